#include "install/path_macros.h"

#include <cstddef>

#include "base/replace.h"
#include "platform/files.h"
#include "platform/system.h"
#include "script/commands.h"

namespace modFunciones {
namespace {

constexpr std::size_t FolderBufferSize = 255;

std::string QueryFolder(std::size_t (*query)(std::string& buffer)) {
  std::string buffer(FolderBufferSize, ' ');
  const std::size_t length = query(buffer);
  return length <= buffer.size() ? buffer.substr(0, length) : "";
}

}  // namespace

std::string GetWindowsDir() { return QueryFolder(platform::system::WindowsDirectory); }

std::string GetSystemDir() { return QueryFolder(platform::system::SystemDirectory); }

std::string ExpandMacros(std::string_view value) {
  if (value.find('$') == std::string_view::npos) return std::string(value);
  std::string expanded = ReplaceAll(value, modPrincipal::WindowsMacro, GetWindowsDir());
  expanded = ReplaceAll(expanded, modPrincipal::SystemMacro, GetSystemDir());
  return ReplaceAll(expanded, modPrincipal::OwnFolderMacro, platform::system::ExecutableFolder());
}

void CreateFolderPath(const std::string& path) {
  for (auto at = path.find('\\'); at != std::string::npos; at = path.find('\\', at + 1)) {
    const std::string folder = path.substr(0, at + 1);
    // The download that follows fails and is reported when the folder is not there.
    if (!platform::files::FolderExists(folder)) (void)platform::files::CreateFolder(folder);
  }
}

}  // namespace modFunciones
