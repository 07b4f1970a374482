#pragma once

#include "publish/order.h"

namespace publish {

/// Writes the files into the site's folder of the new version and the block into its script.
[[nodiscard]] Made Make(const Order& order);

}  // namespace publish
