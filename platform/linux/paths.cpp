#include "platform/linux/paths.h"

#include <algorithm>
#include <filesystem>

#include "base/text.h"

namespace platform::linux_layer {
namespace {

bool BeginsWithDrive(std::string_view path) {
  if (path.size() < 2 || path[1] != ':') return false;
  const char letter = static_cast<char>(path[0] | 0x20);
  return letter >= 'a' && letter <= 'z';
}

}  // namespace

std::string ToSystemPath(std::string_view path) {
  if (BeginsWithDrive(path)) path.remove_prefix(2);
  std::string systemPath = modFunciones::ToUtf8(path);
  std::replace(systemPath.begin(), systemPath.end(), '\\', '/');
  return systemPath;
}

std::string ToProgramPath(std::string_view systemPath) {
  std::string path = modFunciones::FromAnyUtf8(systemPath);
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

std::string TargetOfLink(const std::string& systemPath) {
  constexpr std::string_view Deleted = " (deleted)";  // what the kernel appends
  std::error_code failure;
  std::string target = std::filesystem::read_symlink(systemPath, failure).string();
  if (target.ends_with(Deleted)) target.resize(target.size() - Deleted.size());
  return target;
}

std::string FileNameOf(const std::string& systemPath) {
  return systemPath.substr(systemPath.rfind('/') + 1);
}

}  // namespace platform::linux_layer
