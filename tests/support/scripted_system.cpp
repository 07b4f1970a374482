#include "tests/support/scripted_system.h"

#include <algorithm>
#include <new>
#include <sstream>
#include <utility>

#include "base/replace.h"
#include "platform/components.h"
#include "platform/http.h"
#include "platform/signature.h"
#include "platform/system.h"
#include "tests/support/scripted_window.h"

namespace scripted_system {

State state;

std::string Disk::Path(const std::string& name) const {
  return "C:\\Kt\\" + modFunciones::ReplaceAll(name, "/", "\\");
}
void Disk::Fill(const scripted_system::Tree& files) const {
  for (const auto& [name, content] : files) state.files[Path(name)] = content;
}
Tree Disk::Tree() const {
  scripted_system::Tree tree;
  for (const auto& [path, content] : state.files) {
    tree[modFunciones::ReplaceAll(path.substr(Path("").size()), "\\", "/")] = content;
  }
  return tree;
}

namespace {

/// What a handle points to.
struct Thing {
  std::string name;
  const Page* page = nullptr;
  std::size_t at = 0;  // the place where it is read; of a request, 1 once it was sent
};
void* New(const Thing& thing) {
  ++state.open;
  return new Thing(thing);
}
void Close(void* handle) {
  --state.open;
  delete static_cast<Thing*>(handle);
}
Thing& In(const auto& handle) { return *static_cast<Thing*>(handle.get()); }

/// Tells of a call, whose result is given.
template <typename Result>
Result Told(Result result, const auto&... callAndArguments) {
  std::ostringstream words;
  ((words << ' ' << callAndArguments), ...);
  const std::string event = words.str().substr(1);
  scripted_window::Tell(event);
  if (event == state.noMemoryAt) throw std::bad_alloc();
  return result;
}

/// Tells of an operation on a file; false when it goes wrong.
bool Works(const char* operation, const std::string& path, const std::string& more = "") {
  (void)Told(true, operation, path + more);
  const std::string name = path.substr(path.find_last_of("\\/", path.size() - 2) + 1);
  state.operations.push_back(std::string(operation) + ' ' + name);
  const bool isFault =
      state.operations.size() == state.faultAt || state.operations.back() == state.faultOn;
  if (isFault && state.dies) throw ProcessEnded();
  return !isFault;
}
bool WorksOn(const char* operation, const std::string& path) {
  return Works(operation, path) && state.files.contains(path);
}

const Page* Answer(const std::string& url) {
  static const Page missing = {"", "404"};
  const auto found = state.web.find(url);
  return found == state.web.end() ? &missing : &found->second;
}

std::size_t Put(std::string& buffer, const std::string& value) {
  std::copy(value.begin(), value.end(), buffer.begin());
  return value.size();
}

}  // namespace
}  // namespace scripted_system

using namespace scripted_system;
using Text = const std::string&;

namespace platform::files {

void CloseFile::operator()(void* file) const { scripted_system::Close(file); }
std::vector<std::string> Find(Text pattern) {
  const std::string beginning = pattern.substr(0, pattern.find('*'));
  std::vector<std::string> found;
  for (const auto& [path, content] : state.files) {
    if (path == pattern || (beginning != pattern && path.starts_with(beginning)))
      found.push_back(path);
  }
  return Works("Find", pattern) ? found : std::vector<std::string>();
}
bool IsFile(Text path) { return WorksOn("IsFile", path); }
bool CanBeRenamed(Text path) { return WorksOn("CanBeRenamed", path); }
bool Delete(Text path) { return Works("Delete", path) && state.files.erase(path) == 1; }
bool Rename(Text oldPath, Text newPath) {
  if (!Works("Rename", oldPath, " to " + newPath) || state.files.contains(newPath)) return false;
  auto file = state.files.extract(oldPath);
  if (file) file.key() = newPath;
  return file && state.files.insert(std::move(file)).inserted;
}
bool FolderExists(Text path) { return Works("FolderExists", path) && state.folders.contains(path); }
bool CreateFolder(Text path) {
  return Works("CreateFolder", path) && state.folders.insert(path).second;
}
File OpenForReading(Text path) {
  return File(WorksOn("OpenForReading", path) ? New({path}) : nullptr);
}
File Create(Text path) {
  const bool hasFolder = state.folders.contains(path.substr(0, path.find_last_of('\\') + 1));
  if (!Works("Create", path) || !hasFolder) return nullptr;
  state.files[path].clear();
  return File(New({path}));
}
std::optional<std::int64_t> Length(const File& file) {
  if (!Works("Length", In(file).name)) return std::nullopt;
  return state.files[In(file).name].size();
}
bool Read(const File& file, std::string& buffer) {
  buffer = state.files[In(file).name].substr(0, buffer.size());
  return Works("Read", In(file).name);
}
bool Write(const File& file, std::string_view bytes) {
  std::string& content = state.files[In(file).name];
  content += bytes.substr(0, bytes.size() / 2);  // is there even if the rest finds no room
  if (!Works("Write", In(file).name, ' ' + std::to_string(bytes.size()))) return false;
  content += bytes.substr(bytes.size() / 2);
  return true;
}
bool Close(File file) { return Works("Close", In(file).name); }
DiskSpace QueryDiskSpace(Text root) {
  return Works("QueryDiskSpace", root) ? state.space : DiskSpace();
}

}  // namespace platform::files

namespace platform::http {

void CloseInternetHandle::operator()(void* handle) const { Close(handle); }
void CloseBody::operator()(void* body) const { Close(body); }
bool IsOffline() { return state.offline; }
Handle OpenRoot(Text userAgent, std::int32_t accessType, Text proxy) {
  const bool usual = userAgent == "Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.0)" &&
                     accessType == 0 && proxy.empty();
  return Handle(usual ? New({}) : nullptr);
}
Handle Connect(const Handle& /*root*/, Text host, std::uint16_t port) {
  const std::string shown = port == 80 || port == 443 ? "" : ':' + std::to_string(port);
  return Handle(New({"://" + host + shown}));
}
Handle OpenRequest(const Handle& connection, Text verb, Text objectName, Text version,
                   Text referrer, bool secure) {
  const std::string url = (secure ? "https" : "http") + In(connection).name + objectName;
  return Told(Handle(New({url, Answer(url)})), verb, url, version + referrer);
}
bool AddRequestHeaders(const Handle& /*request*/, Text headers) { return headers.empty(); }
bool Send(const Handle& request, Text optionalData) {
  In(request).at = 1;
  return optionalData.empty();
}
bool IsSecure(const Handle& request) { return In(request).page->secure.starts_with("HEAD"); }
bool QueryInfo(const Handle& request, std::uint32_t infoLevel, std::string& buffer,
               std::int32_t& length) {
  const Page& page = *In(request).page;
  if (!Told(In(request).at == 1 && buffer.size() == 1024, "query", infoLevel)) return false;
  const auto told = page.length.value_or(std::to_string(page.body.size()));
  length = static_cast<std::int32_t>(Put(buffer, infoLevel == 19 ? page.status : told));
  return true;
}
Body OpenUrl(const Handle& /*root*/, Text url) {
  return Told(Body(url.empty() ? nullptr : New({url, Answer(url)})), "GET", url);
}
bool IsSecure(const Body& body) { return In(body).page->secure.ends_with("GET"); }
std::optional<std::int64_t> AnnouncedLength(const Body& body) {
  const Page& page = *In(body).page;
  const auto length = page.announced.value_or(static_cast<std::int64_t>(page.body.size()));
  return length < 0 ? std::nullopt : std::optional(length);
}
bool Read(const Body& body, char* buffer, std::uint32_t size, std::uint32_t& bytesRead) {
  auto& [name, page, at] = In(body);
  // Less than a block is not the end.
  bytesRead = static_cast<std::uint32_t>(page->body.copy(buffer, size - 24, at));
  at += bytesRead;
  return Told(at <= page->breaksAt, "read", bytesRead);
}

}  // namespace platform::http

namespace platform::processes {

void CloseSystemHandle::operator()(void* handle) const { Close(handle); }
Snapshot TakeSnapshot(std::uint32_t kind) { return Told(Snapshot(New({})), "TakeSnapshot", kind); }
bool FirstEntry(const Snapshot& snapshot, Entry& entry) { return NextEntry(snapshot, entry); }
bool NextEntry(const Snapshot& snapshot, Entry& entry) {
  std::size_t& at = In(snapshot).at;
  if (at == state.processes.size()) return false;
  entry = state.processes[at++];
  return true;
}
std::uint32_t OwnId() { return 1; }
std::int32_t SystemVersion() { return state.systemVersion; }
Token OpenOwnToken(std::uint32_t access) { return Told(Token(New({})), "OpenOwnToken", access); }
std::optional<PrivilegeId> LookUpPrivilege(Text name) {
  return name == "SeDebugPrivilege" ? std::optional(20) : std::nullopt;
}
bool AdjustPrivilege(const Token& /*token*/, PrivilegeId privilege, std::uint32_t attributes) {
  return Told(true, "AdjustPrivilege", privilege, attributes);
}
Process Open(std::uint32_t access, std::uint32_t id) {
  return Told(Process(New({std::to_string(id)})), "Open", access, id);
}
bool Terminate(const Process& process, std::uint32_t exitCode) {
  return Told(true, "Terminate", In(process).name, exitCode);
}
bool ExitCode(const Process& /*process*/, std::uint32_t& exitCode) {
  exitCode = 259;
  return true;
}
bool HasEnded(const Process& /*process*/) { return state.polls-- <= 0; }
Process Start(Text commandLine, int showValue) {
  return Told(Process(New({})), "Start", commandLine, showValue);
}
void Sleep(std::uint32_t milliseconds) { (void)Told(true, "Sleep", milliseconds); }

}  // namespace platform::processes

namespace platform::components {

void FreeComponent::operator()(void* library) const { Close(Told(library, "FreeComponent")); }
void CloseWorker::operator()(void* worker) const { Close(worker); }
Library Load(Text path) { return Told(Library(New({})), "Load", path); }
void LeaveBehind(Library library) { Close(Told(library.release(), "LeaveBehind")); }
EntryPoint FindEntryPoint(const Library& library, Text name) { return Told(library.get(), name); }
Worker StartWorker(EntryPoint /*entryPoint*/) { return Worker(New({})); }
bool WaitForEnd(const Worker& /*worker*/, std::uint32_t milliseconds) {
  return Told(!state.workerHangs, "WaitForEnd", milliseconds);
}

}  // namespace platform::components

// Nothing is signed.
namespace platform::signature {
void CloseDigest::operator()(void* /*digest*/) const {}
Digest StartDigest() { return nullptr; }
void Add(const Digest& /*digest*/, std::string_view /*bytes*/) {}
std::string Finish(Digest /*digest*/) { return ""; }
bool IsSignedBy(std::string_view, std::string_view, std::string_view) { return false; }
}  // namespace platform::signature

namespace platform::system {

std::string CommandLineText() { return state.commandLine; }
std::string ExecutableFolder() { return "C:\\Kt"; }
std::string ExecutableBaseName() { return state.ownName; }
std::size_t WindowsDirectory(std::string& buffer) { return Put(buffer, "C:\\Win"); }
std::size_t SystemDirectory(std::string& buffer) { return Put(buffer, "C:\\Win\\Sys"); }
std::string DecimalSeparator() { return ","; }
std::int32_t OpenWithShell(Text verb, Text file, Text parameters, Text folder, int showValue) {
  return Told(33, verb, file, parameters, "in", folder, showValue);
}
void EndTurn::operator()(void* /*turn*/) const {}
Turn TakeTurn() { return Turn(&state); }
void EndProcess() { throw Told(ProcessEnded(), "EndProcess"); }

}  // namespace platform::system
