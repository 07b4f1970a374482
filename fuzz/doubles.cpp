// The layer as fuzz targets see it, and the way in for their inputs.

#include "fuzz/fuzz.h"
#include "platform/components.h"
#include "platform/files.h"
#include "platform/http.h"
#include "platform/processes.h"
#include "platform/signature.h"
#include "platform/system.h"
#include "tests/support/scripted_window.h"

Machine machine;

namespace {

int object;  // what every handle points to

std::size_t Fill(std::string& buffer, std::string_view value) {
  buffer.replace(0, value.size(), value);
  return value.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  machine = {};
  scripted_window::Reset();
  const std::string input(data, size);
  const auto end = std::min(input.find('\n'), size);
  Fuzz(input.substr(0, end), input.substr(std::min(end + 1, size)));
  return 0;
}

// There is no component.
namespace platform::components {
void FreeComponent::operator()(void*) const {}
void CloseWorker::operator()(void*) const {}
Library Load(const std::string&) { return {}; }
void LeaveBehind(Library) {}
EntryPoint FindEntryPoint(const Library&, const std::string&) { return {}; }
Worker StartWorker(EntryPoint) { return {}; }
bool WaitForEnd(const Worker&, std::uint32_t) { return false; }
}  // namespace platform::components

// There is one file, which stays, and no folder until it is created.
namespace platform::files {
std::vector<std::string> Find(const std::string&) { return {}; }
bool IsFile(const std::string& path) { return path == machine.onlyFile; }
bool CanBeRenamed(const std::string&) { return false; }
bool Delete(const std::string&) { return false; }
bool Rename(const std::string&, const std::string&) { return false; }
bool FolderExists(const std::string& path) { return machine.folders.contains(path); }
bool CreateFolder(const std::string& path) { return machine.folders.insert(path).second; }
void CloseFile::operator()(void*) const {}
File OpenForReading(const std::string&) { return {}; }
File Create(const std::string&) { return {}; }
std::optional<std::int64_t> Length(const File&) { return {}; }
bool Read(const File&, std::string&) { return false; }
bool Write(const File&, std::string_view) { return false; }
bool Close(File) { return false; }
DiskSpace QueryDiskSpace(const std::string&) { return {}; }
}  // namespace platform::files

// The server has every file, of 200 bytes.
namespace platform::http {
void CloseInternetHandle::operator()(void*) const {}
bool IsOffline() { return false; }
Handle OpenRoot(const std::string&, std::int32_t, const std::string&) { return Handle(&object); }
Handle Connect(const Handle&, const std::string&, std::uint16_t) { return Handle(&object); }
Handle OpenRequest(const Handle&, const std::string&, const std::string& objectName,
                   const std::string&, const std::string&, bool) {
  Require(objectName.starts_with('/'));
  return Handle(&object);
}
bool AddRequestHeaders(const Handle&, const std::string&) { return true; }
bool Send(const Handle&, const std::string&) { return true; }
bool IsSecure(const Handle&) { return true; }
bool QueryInfo(const Handle&, std::uint32_t, std::string& buffer, std::int32_t& length) {
  length = static_cast<std::int32_t>(Fill(buffer, "200"));
  return true;
}
void CloseBody::operator()(void*) const {}
Body OpenUrl(const Handle&, const std::string&) { return {}; }
bool IsSecure(const Body&) { return true; }
std::optional<std::int64_t> AnnouncedLength(const Body&) { return {}; }
bool Read(const Body&, char*, std::uint32_t, std::uint32_t&) { return false; }
}  // namespace platform::http

// No process runs; a program that is started has ended at once.
namespace platform::processes {
void CloseSystemHandle::operator()(void*) const {}
Snapshot TakeSnapshot(std::uint32_t) { return Snapshot(&object); }
bool FirstEntry(const Snapshot&, Entry&) { return false; }
bool NextEntry(const Snapshot&, Entry&) { return false; }
std::uint32_t OwnId() { return 0; }
std::int32_t SystemVersion() { return 0; }
Token OpenOwnToken(std::uint32_t) { return {}; }
std::optional<PrivilegeId> LookUpPrivilege(const std::string&) { return {}; }
bool AdjustPrivilege(const Token&, PrivilegeId, std::uint32_t) { return false; }
Process Open(std::uint32_t, std::uint32_t) { return {}; }
bool Terminate(const Process&, std::uint32_t) { return false; }
bool ExitCode(const Process&, std::uint32_t&) { return false; }
bool HasEnded(const Process&) { return true; }
Process Start(const std::string&, int) { return {}; }
void Sleep(std::uint32_t) {}
}  // namespace platform::processes

// The digest of "key" is all zeros, and that key has signed everything.
namespace platform::signature {
void CloseDigest::operator()(void* digest) const { delete static_cast<std::string*>(digest); }
Digest StartDigest() { return Digest(new std::string); }
void Add(const Digest& digest, std::string_view bytes) {
  *static_cast<std::string*>(digest.get()) += bytes;
}
std::string Finish(Digest digest) {
  return std::string(32, *static_cast<std::string*>(digest.get()) == "key" ? '\0' : 'x');
}
bool IsSignedBy(std::string_view publicKey, std::string_view message, std::string_view) {
  machine.signedMessage = message;
  return publicKey == "key";
}
}  // namespace platform::signature

namespace platform::system {
std::string CommandLineText() { return machine.commandLine; }
std::string ExecutableFolder() { return "C:\\Ledger"; }
std::string ExecutableBaseName() { return "Kestrane"; }
std::size_t WindowsDirectory(std::string& buffer) { return Fill(buffer, "C:\\WINDOWS"); }
std::size_t SystemDirectory(std::string& buffer) { return Fill(buffer, "C:\\WINDOWS\\system32"); }
std::string DecimalSeparator() { return ","; }
std::int32_t OpenWithShell(const std::string&, const std::string&, const std::string&,
                           const std::string&, int) {
  return 0;
}
void EndTurn::operator()(void*) const {}
Turn TakeTurn() { return Turn(&object); }
void EndProcess() { std::abort(); }
}  // namespace platform::system
