#pragma once

// The commands. Each reports on standard output and returns the exit status.

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
  std::string key = {};  // that installations name: its digits or its file, or ""
  bool probe = false;    // ask the servers for each file
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
  std::string key = {};  // that installations name: its digits or its file, or ""
};
[[nodiscard]] int RunSimulate(const SimulateOptions& options);

/// keys: files of private keys to sign the script with; may be empty.
[[nodiscard]] int RunMake(const Order& order, bool asJson,
                          const std::vector<std::string>& keys = {});

struct KeyOptions {
  std::string file;  // of the private key
  std::string url;   // where the upload folder will be found, or ""
};
[[nodiscard]] int RunKey(const KeyOptions& options);

struct SignOptions {
  std::string script;             // a file
  std::vector<std::string> keys;  // files of private keys; none: digests only
  std::string updater;            // file of the updater that the header offers, or ""
  bool asJson = false;
};
[[nodiscard]] int RunSign(const SignOptions& options);

}  // namespace publish
