#pragma once

#include <string>

namespace publish {

struct ServeOptions {
  std::string site;  // the upload folder, in UTF-8
  std::string url;   // where it will be found; "": as its script tells
  unsigned short port = 8080;
};

/// Serves an upload folder to this machine alone, for a trial, until the process is ended. In the
/// script the place where the folder will be found is replaced by the place where it is served.
/// Returns the exit status of a failure.
[[nodiscard]] int RunServe(const ServeOptions& options);

}  // namespace publish
