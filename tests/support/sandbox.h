#pragma once

// A folder of a test's own, deleted with it.

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <thread>

#include "platform/system.h"

/// Calls until it returns true, for half a minute at most; whether it did.
template <typename Condition>
[[nodiscard]] bool Eventually(Condition condition) {
  using namespace std::chrono_literals;
  for (int i = 0; i < 3000; ++i, std::this_thread::sleep_for(10ms)) {
    if (condition()) return true;
  }
  return false;
}

/// The folder of the running test.
inline std::filesystem::path OwnFolder() {
  std::string path = platform::system::ExecutableFolder();
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

inline std::string ReadWhole(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A content as tests compare it: long ones by length and hash, so that a failure stays readable.
inline std::string Shown(const std::string& content) {
  if (content.size() < 100) return content;
  return std::to_string(content.size()) + " bytes with hash " +
         std::to_string(std::hash<std::string>()(content));
}

class Sandbox {
 public:
  Sandbox() {
    static int count = 0;
    do {
      root = std::filesystem::temp_directory_path() / ("kestrane test " + std::to_string(++count));
    } while (!std::filesystem::create_directories(root));
  }
  ~Sandbox() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
  }
  Sandbox& operator=(Sandbox&&) = delete;

  /// The path of a name, whose separators may be "/", as the program takes it.
  [[nodiscard]] std::string Path(const std::string& name) const {
    std::string path = (root / name).string();
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
  }
  /// The same for the standard library.
  [[nodiscard]] std::filesystem::path Folder(const std::string& name) const { return root / name; }
  void Write(const std::filesystem::path& name, const std::string& content) const {
    std::filesystem::create_directories((root / name).parent_path());
    std::ofstream(root / name, std::ios::binary) << content;
    // It may be a program.
    std::filesystem::permissions(root / name, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add);
  }
  void Fill(const std::map<std::string, std::string>& files) const {
    for (const auto& [name, content] : files) Write(name, content);
  }
  [[nodiscard]] std::string Read(const std::string& name) const { return ReadWhole(root / name); }
  [[nodiscard]] bool Has(const std::string& name) const {
    return std::filesystem::exists(root / name);
  }
  /// Every file below a folder with its content as Shown, names with "/".
  [[nodiscard]] std::map<std::string, std::string> Tree(const std::string& folder = "") const {
    std::map<std::string, std::string> tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
      const std::string name = entry.path().lexically_relative(root / folder).generic_string();
      if (entry.is_regular_file()) tree[name] = Shown(ReadWhole(entry.path()));
    }
    return tree;
  }

 private:
  std::filesystem::path root;
};
