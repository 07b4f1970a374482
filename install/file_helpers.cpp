#include "install/file_helpers.h"

#include <new>
#include <stdexcept>

#include "platform/files.h"

namespace modFunciones {

namespace files = platform::files;

bool FileExists(std::string_view path) {
  return !files::Find(path).empty();
}

bool FileDelete(std::string_view path) {
  bool deleted = true;
  for (const auto& file : files::Find(path)) {
    if (!files::Delete(file)) deleted = false;
  }
  return deleted;
}

bool FileRename(std::string_view oldPath, std::string_view newPath) {
  return files::Rename(oldPath, newPath);
}

std::string FileReadAll(std::string_view path) {
  if (!FileExists(path)) return "";
  const files::File file = files::OpenForReading(path);
  if (!file) return "";
  const auto length = files::Length(file);
  if (!length) return "";
  try {
    std::string content(static_cast<std::size_t>(*length), '\0');
    return files::Read(file, content) ? content : "";
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  return "";  // the content does not fit into memory
}

bool FileWriteAll(std::string_view path, std::string_view content) {
  if (!FileDelete(path)) return false;
  const files::File file = files::Create(path);
  return file && files::Write(file, content);
}

}  // namespace modFunciones
