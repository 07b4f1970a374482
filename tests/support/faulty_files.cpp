#include "tests/support/faulty_files.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

#include "platform/files.h"
#include "real_files.h"

namespace faulty_files {

State state;
thread_local std::size_t largestAllocation = SIZE_MAX;

}  // namespace faulty_files

namespace platform::files {
namespace {

using faulty_files::state;

/// Calls a function of the layer, unless it is the one that goes wrong.
template <typename Result, typename... Parameters>
Result Do(const char* operation, const std::string& path, Result (*function)(Parameters...),
          std::type_identity_t<Parameters>... arguments) {
  const std::string name = path.substr(path.find_last_of("\\/") + 1);
  state.operations.push_back(std::string(operation) + ' ' + name);
  if (state.operations.size() != state.faultAt) {
    return function(std::forward<Parameters>(arguments)...);
  }
  if (state.dies) std::_Exit(faulty_files::Died);
  return {};
}

/// A file here holds the layer's own.
real_files::File& Real(const File& file) { return *static_cast<real_files::File*>(file.get()); }

File Counted(real_files::File file, const std::string& path) {
  state.openPath = path;
  if (!file) return nullptr;
  ++state.openFiles;
  return File(new real_files::File(std::move(file)));
}

}  // namespace

void CloseFile::operator()(void* file) const {
  --state.openFiles;
  delete static_cast<real_files::File*>(file);
}
std::vector<std::string> Find(const std::string& pattern) {
  return Do("Find", pattern, real_files::Find, pattern);
}
bool IsFile(const std::string& path) { return Do("IsFile", path, real_files::IsFile, path); }
bool CanBeRenamed(const std::string& path) {
  return Do("CanBeRenamed", path, real_files::CanBeRenamed, path);
}
bool Delete(const std::string& path) { return Do("Delete", path, real_files::Delete, path); }
bool Rename(const std::string& oldPath, const std::string& newPath) {
  return Do("Rename", oldPath, real_files::Rename, oldPath, newPath);
}
bool FolderExists(const std::string& path) {
  return Do("FolderExists", path, real_files::FolderExists, path);
}
bool CreateFolder(const std::string& path) {
  return Do("CreateFolder", path, real_files::CreateFolder, path);
}
File OpenForReading(const std::string& path) {
  return Counted(Do("OpenForReading", path, real_files::OpenForReading, path), path);
}
File Create(const std::string& path) {
  return Counted(Do("Create", path, real_files::Create, path), path);
}
std::optional<std::int64_t> Length(const File& file) {
  return Do("Length", state.openPath, real_files::Length, Real(file));
}
bool Read(const File& file, std::string& buffer) {
  return Do("Read", state.openPath, real_files::Read, Real(file), buffer);
}
bool Write(const File& file, std::string_view bytes) {
  const bool goesWrong = state.operations.size() + 1 == state.faultAt;
  if (goesWrong) (void)real_files::Write(Real(file), bytes.substr(0, bytes.size() / 2));
  return Do("Write", state.openPath, real_files::Write, Real(file), bytes);
}
bool Close(File file) {
  return Do("Close", state.openPath, real_files::Close, std::move(Real(file)));
}
DiskSpace QueryDiskSpace(const std::string& root) {
  return std::bit_cast<DiskSpace>(Do("QueryDiskSpace", root, real_files::QueryDiskSpace, root));
}

}  // namespace platform::files

void* operator new(std::size_t size) {
  if (size > faulty_files::largestAllocation) throw std::bad_alloc();
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
