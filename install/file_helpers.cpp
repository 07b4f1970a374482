#include "install/file_helpers.h"

#include <new>
#include <utility>

#include "platform/files.h"

namespace modFunciones {

namespace files = platform::files;

namespace {

bool WriteNew(const std::string& path, std::string_view content) {
  files::File file = files::Create(path);
  return file && files::Write(file, content) && files::Close(std::move(file));
}

}  // namespace

bool FileExists(const std::string& path) { return !files::Find(path).empty(); }

bool FileDelete(const std::string& path) {
  bool deleted = true;
  for (const auto& file : files::Find(path)) {
    if (!files::Delete(file)) deleted = false;
  }
  return deleted;
}

bool FileRename(const std::string& oldPath, const std::string& newPath) {
  return files::Rename(oldPath, newPath);
}

std::string FileReadAll(const std::string& path) {
  if (!FileExists(path)) return "";
  const files::File file = files::OpenForReading(path);
  if (!file) return "";
  const auto length = files::Length(file);
  if (!length) return "";
  try {
    std::string content;
    if (static_cast<std::uint64_t>(*length) > content.max_size()) return "";
    content.resize(static_cast<std::size_t>(*length));
    if (files::Read(file, content)) return content;
  } catch (const std::bad_alloc&) {
    // Content that does not fit into memory cannot be read.
  }
  return "";
}

bool FileWriteAll(const std::string& path, std::string_view content) {
  if (!FileDelete(path)) return false;
  if (WriteNew(path, content)) return true;
  (void)FileDelete(path);  // half a program is worse than none
  return false;
}

}  // namespace modFunciones
