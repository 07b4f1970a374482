#include "platform/http.h"

#include <windows.h>

#include <objbase.h>

#include <wininet.h>

#include <algorithm>
#include <charconv>
#include <vector>

#include "platform/windows/background.h"
#include "platform/windows/libraries.h"

namespace platform::http {
namespace {

using windows::FunctionOf;
using windows::RunInBackground;

/// The functions of the system's HTTP library, under their own names.
struct WinInet {
  HMODULE library = windows::LoadSystemLibrary("wininet.dll");
#define WININET_FUNCTION(name) decltype(&::name) name = FunctionOf<decltype(::name)>(library, #name)
  WININET_FUNCTION(InternetOpenA);
  WININET_FUNCTION(InternetConnectA);
  WININET_FUNCTION(HttpOpenRequestA);
  WININET_FUNCTION(HttpAddRequestHeadersA);
  WININET_FUNCTION(HttpSendRequestA);
  WININET_FUNCTION(HttpQueryInfoA);
  WININET_FUNCTION(InternetOpenUrlA);
  WININET_FUNCTION(InternetReadFile);
  WININET_FUNCTION(InternetQueryOptionA);
  WININET_FUNCTION(InternetCloseHandle);
#undef WININET_FUNCTION
};

const WinInet& Library() {
  static const WinInet library;
  return library;
}

const char* NullWhenEmpty(const std::string& value) {
  return value.empty() ? nullptr : value.c_str();
}

constexpr std::size_t SmallestChunk = 1024;  // bytes
constexpr std::size_t LargestChunk = 64 * 1024;
constexpr DWORD SlowRead = 100;  // milliseconds
constexpr DWORD FastRead = 25;

/// A read costs much the same whatever its size, and returns when all of it is there: so the body
/// is fetched in chunks as large as arrive before anyone would miss the progress.
struct OpenBody {
  Handle url;
  std::size_t chunkSize = SmallestChunk;
  std::vector<char> chunk = {};
  std::size_t taken = 0;  // bytes of the chunk that were handed out
};

/// An empty chunk is the end of the body.
bool FetchChunk(OpenBody& body) {
  body.chunk.resize(body.chunkSize);
  body.taken = 0;
  DWORD count = 0;
  bool read = false;
  const DWORD start = GetTickCount();
  RunInBackground([&] {
    read = Library().InternetReadFile(body.url.get(), body.chunk.data(),
                                      static_cast<DWORD>(body.chunk.size()), &count) != FALSE;
  });
  const DWORD duration = GetTickCount() - start;
  if (duration < FastRead) body.chunkSize = std::min(body.chunkSize * 2, LargestChunk);
  if (duration > SlowRead) body.chunkSize = std::max(body.chunkSize / 2, SmallestChunk);
  body.chunk.resize(read ? count : 0);
  return read;
}

/// Wine takes a connection that closes, or sends something else than HTTP, for an answer.
bool HasStatus(HINTERNET request) {
  DWORD status = 0;
  DWORD size = sizeof status;
  return Library().HttpQueryInfoA(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status,
                                  &size, nullptr) != FALSE &&
         status >= HTTP_STATUS_CONTINUE;
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
      FunctionOf<Query>(windows::LoadSystemLibrary("url.dll"), "InetIsOffline");
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
      NullWhenEmpty(referrer), nullptr, secure ? INTERNET_FLAG_SECURE : 0, 0));
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
  DWORD size = static_cast<DWORD>(length);
  const bool found =
      Library().HttpQueryInfoA(request.get(), infoLevel, buffer.data(), &size, nullptr) != FALSE;
  length = static_cast<std::int32_t>(size);
  return found;
}

void CloseBody::operator()(void* body) const { delete static_cast<OpenBody*>(body); }

Body OpenUrl(const Handle& root, const std::string& url) {
  HINTERNET opened = nullptr;
  RunInBackground(
      [&] { opened = Library().InternetOpenUrlA(root.get(), url.c_str(), nullptr, 0, 0, 0); });
  if (opened == nullptr) return nullptr;
  Body body(new OpenBody{Handle(opened)});
  return HasStatus(opened) ? std::move(body) : nullptr;
}

bool IsSecure(const Body& body) {
  return AnsweredSecurely(static_cast<const OpenBody*>(body.get())->url.get());
}

std::optional<std::int64_t> AnnouncedLength(const Body& body) {
  const auto* open = static_cast<const OpenBody*>(body.get());
  char digits[32] = {};
  DWORD size = sizeof digits;
  if (Library().HttpQueryInfoA(open->url.get(), HTTP_QUERY_CONTENT_LENGTH, digits, &size,
                               nullptr) == FALSE) {
    return std::nullopt;
  }
  std::int64_t length = 0;
  const bool isNumber = std::from_chars(digits, digits + size, length).ec == std::errc{};
  return isNumber && length >= 0 ? std::optional(length) : std::nullopt;
}

bool Read(const Body& body, char* buffer, std::uint32_t size, std::uint32_t& bytesRead) {
  auto& open = *static_cast<OpenBody*>(body.get());
  bytesRead = 0;
  if (open.taken == open.chunk.size() && !FetchChunk(open)) return false;
  const auto available = static_cast<std::uint32_t>(open.chunk.size() - open.taken);
  bytesRead = std::min(size, available);
  std::copy_n(open.chunk.data() + open.taken, bytesRead, buffer);
  open.taken += bytesRead;
  return true;
}

}  // namespace platform::http
