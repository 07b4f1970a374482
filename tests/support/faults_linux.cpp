#include <sys/fsuid.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/linux/paths.h"
#include "tests/support/faults.h"

namespace faults {
namespace {

namespace fs = std::filesystem;

constexpr uid_t Nobody = 65534;

/// Root is kept from nothing, so that its file accesses become those of a user without rights.
class LockedFile {
 public:
  explicit LockedFile(const std::string& path)
      : file(platform::linux_layer::ToSystemPath(path)),
        folderPerms(fs::status(file.parent_path()).permissions()) {
    fs::permissions(file, fs::perms::none);
    fs::permissions(file.parent_path(), fs::perms{0555});
    if (geteuid() == 0) setfsuid(Nobody);
  }
  ~LockedFile() {
    setfsuid(geteuid());
    prctl(PR_SET_DUMPABLE, 1);  // a change of user takes it away, and leak checkers need it
    fs::permissions(file.parent_path(), folderPerms);
    fs::permissions(file, fs::perms::owner_all);
  }
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;

 private:
  fs::path file;
  fs::perms folderPerms;
};

}  // namespace

std::string Hide(const std::string& path) {
  return path;  // its name starts with a dot
}

std::shared_ptr<void> Lock(const std::string& path) { return std::make_shared<LockedFile>(path); }

Resources ResourcesInUse() {
  const auto entries = [](const char* folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
  };
  long pages = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return {.handles = entries("/proc/self/fd"),
          .threads = entries("/proc/self/task"),
          .kilobytes = resident * sysconf(_SC_PAGESIZE) / 1024};
}

bool OnWine() { return false; }

std::shared_ptr<void> TrustAuthority(const std::string& /*certificateFile*/) { return nullptr; }

}  // namespace faults
