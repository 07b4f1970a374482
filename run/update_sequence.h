#pragma once

namespace frmPrincipal {

/// The window's resize event: the first one runs the whole update sequence.
void Form_Resize();

}  // namespace frmPrincipal

namespace modPrincipal {

/// The body of a run: connection, script, replacement of an outdated updater, phases. Returns when
/// the run has reached its final screen, or ends the process.
void CheckForUpdate();

/// The download phase and the install phase of the recorded actions, and their outcome.
void PerformUpdate();

}  // namespace modPrincipal
