// HTTP over WinINet, whose calls block, while the thread that makes them is the user interface's.
// Each one that waits for the network runs on the worker of background.cpp, and events are handled
// until it is over. A call owns what it uses, so that a body can be closed while it is being read.
//
// A body is fetched one chunk ahead of the one that is handed out. A chunk is what has arrived,
// for InternetQueryDataAvailable tells that, so that the user sees all of it, even when the server
// then falls silent. But asking costs as much as reading, and a read costs much the same whatever
// its size: so a body that arrives faster than anyone can watch is read in large chunks, each of
// which returns when all of it is there.
//
// Tried and left:
// - Reads of the blocks that the core takes, of 1 KiB: twenty times slower with 100 MB.
// - Chunks that grow with what the last read took, without asking: a read returns when it is full,
//   and so a server that stalled left the bars behind what it had sent.
// - Chunks of up to 256 KiB: what is in one reaches the bars in one step.
// - A look at the events every 20 ms while a call runs: twice the processor time, on a slow server.
// - A thread for each call: creating it costs more than most calls take.

#include "platform/http.h"

#include <windows.h>

#include <objbase.h>

#include <wininet.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <memory>

#include "platform/windows/background.h"
#include "platform/windows/libraries.h"
#include "platform/windows/text.h"

namespace platform::http {
namespace {

using windows_layer::FunctionOf;
using windows_layer::NullWhenEmpty;
using windows_layer::RunInBackground;

/// The functions of the system's HTTP library, under their own names.
struct WinInet {
  HMODULE library = windows_layer::LoadSystemLibrary("wininet.dll");
// NOLINTNEXTLINE(bugprone-macro-parentheses): the name that a member is declared with takes none
#define WININET_FUNCTION(name) decltype(&::name) name = FunctionOf<decltype(::name)>(library, #name)
  WININET_FUNCTION(InternetOpenA);
  WININET_FUNCTION(InternetConnectA);
  WININET_FUNCTION(HttpOpenRequestA);
  WININET_FUNCTION(HttpAddRequestHeadersA);
  WININET_FUNCTION(HttpSendRequestA);
  WININET_FUNCTION(HttpQueryInfoA);
  WININET_FUNCTION(InternetOpenUrlA);
  WININET_FUNCTION(InternetQueryDataAvailable);
  WININET_FUNCTION(InternetReadFile);
  WININET_FUNCTION(InternetQueryOptionA);
  WININET_FUNCTION(InternetCloseHandle);
#undef WININET_FUNCTION
};

const WinInet& Library() {
  static const WinInet library;
  return library;
}

/// Signing on at a company's proxy takes several requests over one connection.
constexpr DWORD SignOnFlag = INTERNET_FLAG_KEEP_CONNECTION;

constexpr DWORD LargestChunk = 128 * 1024;  // bytes
constexpr double Sample = 256 * 1024;       // bytes from which the speed is told
constexpr double Unwatchable = 20'000'000;  // bytes a second

/// A part of a body that was read, or is being read, in one call.
struct Chunk {
  std::unique_ptr<char[]> bytes = std::make_unique_for_overwrite<char[]>(LargestChunk);
  DWORD count = 0;
  bool read = false;
  double seconds = 0;  // that it took
};

struct OpenBody {
  explicit OpenBody(HINTERNET opened) : url(opened) {}
  ~OpenBody() {
    // Shared as long as the call that reads it has not ended.
    if (next.use_count() > 1) windows_layer::AbandonBackgroundCall();
  }
  OpenBody(const OpenBody&) = delete;
  OpenBody& operator=(const OpenBody&) = delete;

  Handle url;
  std::optional<std::int64_t> announced;  // length of the body
  std::int64_t received = 0;
  double sampledBytes = 0;
  double sampledSeconds = 0;
  bool isFast = false;  // as far as the last sample tells
  std::shared_ptr<Chunk> chunk = std::make_shared<Chunk>();
  std::shared_ptr<Chunk> next;  // being read, and shared with the call that reads it
  DWORD taken = 0;              // bytes of the chunk that were handed out
};

/// From some moment on.
double Seconds() {
  LARGE_INTEGER ticks;
  LARGE_INTEGER ticksPerSecond;
  QueryPerformanceCounter(&ticks);
  QueryPerformanceFrequency(&ticksPerSecond);
  return static_cast<double>(ticks.QuadPart) / static_cast<double>(ticksPerSecond.QuadPart);
}

/// Waits until something has arrived; nothing when the connection broke. At the end of the body
/// nothing has: the read that follows tells so.
std::optional<DWORD> ArrivedBytes(HINTERNET url) {
  DWORD arrived = 0;
  if (Library().InternetQueryDataAvailable(url, &arrived, 0, 0) == FALSE) return std::nullopt;
  return std::clamp<DWORD>(arrived, 1, LargestChunk);
}

void ReadChunk(HINTERNET url, bool isFast, Chunk& chunk) {
  const double start = Seconds();
  const auto wanted = isFast ? LargestChunk : ArrivedBytes(url);
  chunk.read =
      wanted && Library().InternetReadFile(url, chunk.bytes.get(), *wanted, &chunk.count) != FALSE;
  chunk.seconds = Seconds() - start;
}

void LearnFrom(const Chunk& chunk, OpenBody& body) {
  body.sampledBytes += chunk.count;
  body.sampledSeconds += chunk.seconds;
  if (body.sampledBytes < Sample && !body.isFast) return;
  body.isFast = body.sampledBytes > body.sampledSeconds * Unwatchable;
  body.sampledBytes = body.sampledSeconds = 0;
}

void StartReading(OpenBody& body) {
  body.next = std::make_shared<Chunk>();
  windows_layer::StartBackgroundCall([url = body.url.get(), isFast = body.isFast,
                                      chunk = body.next] { ReadChunk(url, isFast, *chunk); });
}

/// An empty chunk is the end of the body.
bool FetchChunk(OpenBody& body) {
  body.taken = 0;
  if (body.received >= body.announced.value_or(INT64_MAX)) {
    body.chunk->count = 0;
    return true;
  }
  if (!body.next) StartReading(body);
  windows_layer::FinishBackgroundCall();
  body.chunk = std::move(body.next);
  LearnFrom(*body.chunk, body);
  body.received += body.chunk->count;
  const bool more = body.received < body.announced.value_or(INT64_MAX);
  if (more && body.chunk->count > 0) StartReading(body);
  return body.chunk->read;
}

/// Wine takes a connection that closes, or sends something else than HTTP, for an answer.
bool HasStatus(HINTERNET request) {
  DWORD status = 0;
  DWORD size = sizeof status;
  return Library().HttpQueryInfoA(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status,
                                  &size, nullptr) != FALSE &&
         status >= HTTP_STATUS_CONTINUE;
}

std::optional<std::int64_t> LengthOf(HINTERNET request) {
  char digits[32] = {};
  DWORD size = sizeof digits;
  if (Library().HttpQueryInfoA(request, HTTP_QUERY_CONTENT_LENGTH, digits, &size, nullptr) ==
      FALSE) {
    return std::nullopt;
  }
  std::int64_t length = 0;
  const bool isNumber = std::from_chars(digits, digits + size, length).ec == std::errc{};
  return isNumber && length >= 0 ? std::optional(length) : std::nullopt;
}

/// Windows refuses a redirection from https to http by itself; Wine follows it.
bool AnsweredSecurely(HINTERNET request) {
  char url[INTERNET_MAX_URL_LENGTH] = "";
  DWORD size = sizeof url;
  return Library().InternetQueryOptionA(request, INTERNET_OPTION_URL, url, &size) != FALSE &&
         _strnicmp(url, "https:", 6) == 0;
}

}  // namespace

void CloseInternetHandle::operator()(void* handle) const { Library().InternetCloseHandle(handle); }

bool IsOffline() {
  using Query = BOOL WINAPI(DWORD flags);
  static const auto isOffline =
      FunctionOf<Query>(windows_layer::LoadSystemLibrary("url.dll"), "InetIsOffline");
  return isOffline(0) != FALSE;
}

Handle OpenRoot(const std::string& userAgent, std::int32_t accessType, const std::string& proxy) {
  return Handle(Library().InternetOpenA(NullWhenEmpty(userAgent), static_cast<DWORD>(accessType),
                                        NullWhenEmpty(proxy), nullptr, 0));
}

Handle Connect(const Handle& root, const std::string& host, std::uint16_t port) {
  return Handle(Library().InternetConnectA(root.get(), NullWhenEmpty(host), port, nullptr, nullptr,
                                           INTERNET_SERVICE_HTTP, 0, 0));
}

Handle OpenRequest(const Handle& connection, const std::string& verb, const std::string& objectName,
                   const std::string& version, const std::string& referrer, bool secure) {
  return Handle(Library().HttpOpenRequestA(
      connection.get(), verb.c_str(), NullWhenEmpty(objectName), version.c_str(),
      NullWhenEmpty(referrer), nullptr, secure ? INTERNET_FLAG_SECURE | SignOnFlag : 0, 0));
}

bool AddRequestHeaders(const Handle& request, const std::string& headers) {
  return Library().HttpAddRequestHeadersA(request.get(), NullWhenEmpty(headers),
                                          static_cast<DWORD>(headers.size()),
                                          HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE) != FALSE;
}

bool Send(const Handle& request, const std::string& optionalData) {
  std::string data = optionalData;
  bool sent = false;
  RunInBackground([&] {
    sent =
        Library().HttpSendRequestA(request.get(), nullptr, 0, data.empty() ? nullptr : data.data(),
                                   static_cast<DWORD>(data.size())) != FALSE;
  });
  return sent;
}

bool IsSecure(const Handle& request) { return AnsweredSecurely(request.get()); }

bool QueryInfo(const Handle& request, std::uint32_t infoLevel, std::string& buffer,
               std::int32_t& length) {
  auto size = static_cast<DWORD>(length);
  const bool found =
      Library().HttpQueryInfoA(request.get(), infoLevel, buffer.data(), &size, nullptr) != FALSE;
  length = static_cast<std::int32_t>(size);
  return found;
}

void CloseBody::operator()(void* body) const { delete static_cast<OpenBody*>(body); }

Body OpenUrl(const Handle& root, const std::string& url) {
  const DWORD flags = _strnicmp(url.c_str(), "https:", 6) == 0 ? SignOnFlag : 0;
  HINTERNET opened = nullptr;
  RunInBackground(
      [&] { opened = Library().InternetOpenUrlA(root.get(), url.c_str(), nullptr, 0, flags, 0); });
  if (opened == nullptr) return nullptr;
  auto body = std::make_unique<OpenBody>(opened);
  if (!HasStatus(opened)) return nullptr;
  body->announced = LengthOf(opened);
  return Body(body.release());
}

bool IsSecure(const Body& body) {
  return AnsweredSecurely(static_cast<const OpenBody*>(body.get())->url.get());
}

std::optional<std::int64_t> AnnouncedLength(const Body& body) {
  return static_cast<const OpenBody*>(body.get())->announced;
}

bool Read(const Body& body, char* buffer, std::uint32_t size, std::uint32_t& bytesRead) {
  auto& open = *static_cast<OpenBody*>(body.get());
  bytesRead = 0;
  if (open.taken == open.chunk->count && !FetchChunk(open)) return false;
  bytesRead = std::min<std::uint32_t>(size, open.chunk->count - open.taken);
  std::copy_n(open.chunk->bytes.get() + open.taken, bytesRead, buffer);
  open.taken += bytesRead;
  return true;
}

}  // namespace platform::http
