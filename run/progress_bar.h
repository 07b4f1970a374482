#pragma once

namespace modFunciones {

/// Draws the filled fraction of a bar, 0 to 1, as a row of segments in a picture box of
/// frmPrincipal. 0, less, and what is no number empty the bar; above 1 it is full.
void DrawProgressBar(int picture, float fraction);

}  // namespace modFunciones
