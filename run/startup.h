#pragma once

namespace modPrincipal {

/// Entry of the program: reads the command line into the run state and shows the window, whose
/// first resize starts the update; or, in the temporary copy, replaces the updater; or shows what
/// is wrong with the command line.
void Main();

}  // namespace modPrincipal
