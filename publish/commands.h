#pragma once

// The three commands. Each reports on standard output and returns the exit status.

#include <string>
#include <vector>

#include "publish/order.h"

namespace publish {

/// Paths are in UTF-8.
struct CheckOptions {
  std::string script;   // file or URL
  std::string newest;   // newest release of the application, or ""
  std::string updater;  // file of the updater that the header offers, or ""
  bool asJson = false;
};
[[nodiscard]] int RunCheck(const CheckOptions& options);

struct SimulateOptions {
  std::string script;  // file or URL
  std::vector<std::string> installed;
  bool all = false;  // every version that the script tells apart
  bool probe = false;
  bool inShort = false;
  std::string site;  // upload folder to compare with what is asked for, or ""
  bool asJson = false;
};
[[nodiscard]] int RunSimulate(const SimulateOptions& options);

[[nodiscard]] int RunMake(const Order& order, bool asJson);

}  // namespace publish
