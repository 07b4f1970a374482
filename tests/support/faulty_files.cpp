#include "tests/support/faulty_files.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#include "platform/files.h"
#include "real_files.h"

namespace faulty_files {

State state;
thread_local std::size_t largestAllocation = SIZE_MAX;

}  // namespace faulty_files

namespace platform::files {
namespace {

using faulty_files::state;

bool GoesWrong(const std::string& operation, const std::string& path) {
  state.operations.push_back(operation + ' ' + path.substr(path.find_last_of("\\/") + 1));
  return state.operations.size() == state.faultAt;
}

template <typename Result = bool>
Result Fault() {
  if (state.dies) std::_Exit(faulty_files::Died);
  return {};
}

/// A file as the layer's own functions take it.
class Real {
 public:
  explicit Real(const File& file) : real(file.get()) {}
  ~Real() { (void)real.release(); }
  Real(const Real&) = delete;
  Real& operator=(const Real&) = delete;

  real_files::File real;
};

File Counted(real_files::File file, const std::string& path) {
  if (file) ++state.openFiles;
  state.openPath = path;
  return File(file.release());
}

}  // namespace

void CloseFile::operator()(void* file) const {
  --state.openFiles;
  real_files::CloseFile{}(file);
}
std::vector<std::string> Find(const std::string& pattern) {
  if (GoesWrong("Find", pattern)) return Fault<std::vector<std::string>>();
  return real_files::Find(pattern);
}
bool IsFile(const std::string& path) {
  return GoesWrong("IsFile", path) ? Fault() : real_files::IsFile(path);
}
bool Delete(const std::string& path) {
  return GoesWrong("Delete", path) ? Fault() : real_files::Delete(path);
}
bool Rename(const std::string& oldPath, const std::string& newPath) {
  return GoesWrong("Rename", oldPath) ? Fault() : real_files::Rename(oldPath, newPath);
}
bool FolderExists(const std::string& path) {
  return GoesWrong("FolderExists", path) ? Fault() : real_files::FolderExists(path);
}
bool CreateFolder(const std::string& path) {
  return GoesWrong("CreateFolder", path) ? Fault() : real_files::CreateFolder(path);
}
File OpenForReading(const std::string& path) {
  if (GoesWrong("OpenForReading", path)) return Fault<File>();
  return Counted(real_files::OpenForReading(path), path);
}
File Create(const std::string& path) {
  if (GoesWrong("Create", path)) return Fault<File>();
  return Counted(real_files::Create(path), path);
}
std::optional<std::int64_t> Length(const File& file) {
  if (GoesWrong("Length", state.openPath)) return Fault<std::optional<std::int64_t>>();
  return real_files::Length(Real(file).real);
}
bool Read(const File& file, std::string& buffer) {
  return GoesWrong("Read", state.openPath) ? Fault() : real_files::Read(Real(file).real, buffer);
}
bool Write(const File& file, std::string_view bytes) {
  if (!GoesWrong("Write", state.openPath)) return real_files::Write(Real(file).real, bytes);
  (void)real_files::Write(Real(file).real, bytes.substr(0, bytes.size() / 2));
  return Fault();
}
bool Close(File file) {
  if (GoesWrong("Close", state.openPath)) return Fault();
  --state.openFiles;
  return real_files::Close(real_files::File(file.release()));
}
DiskSpace QueryDiskSpace(const std::string& root) {
  if (GoesWrong("QueryDiskSpace", root)) return Fault<DiskSpace>();
  const auto space = real_files::QueryDiskSpace(root);
  return {space.sectorsPerCluster, space.bytesPerSector, space.freeClusters, space.totalClusters};
}

}  // namespace platform::files

void* operator new(std::size_t size) {
  if (size > faulty_files::largestAllocation) throw std::bad_alloc();
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
