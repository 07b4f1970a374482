#pragma once

#include <string_view>

namespace modPrincipal {

/// Puts an outcome on the final screen: the one way in which every outcome of a run is reported.
void FinishWithMessage(std::string_view message);

/// FinishWithMessage for a failure: the finish button then launches nothing.
void FailWithMessage(std::string_view message);

}  // namespace modPrincipal
