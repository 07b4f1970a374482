#include "platform/http.h"

#include <windows.h>

#include <objbase.h>

#include <intshcut.h>
#include <wininet.h>

#include <charconv>

namespace platform::http {
namespace {

const char* NullWhenEmpty(const std::string& value) {
  return value.empty() ? nullptr : value.c_str();
}

}  // namespace

void CloseInternetHandle::operator()(void* handle) const {
  InternetCloseHandle(handle);
}

bool IsOffline() {
  return InetIsOffline(0) != FALSE;
}

Handle OpenRoot(const std::string& userAgent, std::int32_t accessType, const std::string& proxy) {
  return Handle(InternetOpenA(NullWhenEmpty(userAgent), static_cast<DWORD>(accessType),
                              NullWhenEmpty(proxy), nullptr, 0));
}

Handle Connect(const Handle& root, const std::string& host, std::uint16_t port) {
  return Handle(InternetConnectA(root.get(), NullWhenEmpty(host), port, nullptr, nullptr,
                                 INTERNET_SERVICE_HTTP, 0, 0));
}

Handle OpenRequest(const Handle& connection, const std::string& verb, const std::string& objectName,
                   const std::string& version, const std::string& referrer) {
  return Handle(HttpOpenRequestA(connection.get(), verb.c_str(), NullWhenEmpty(objectName),
                                 version.c_str(), NullWhenEmpty(referrer), nullptr, 0, 0));
}

bool AddRequestHeaders(const Handle& request, const std::string& headers) {
  return HttpAddRequestHeadersA(request.get(), NullWhenEmpty(headers),
                                static_cast<DWORD>(headers.size()),
                                HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE) != FALSE;
}

bool Send(const Handle& request, const std::string& optionalData) {
  std::string data = optionalData;
  return HttpSendRequestA(request.get(), nullptr, 0, data.empty() ? nullptr : data.data(),
                          static_cast<DWORD>(data.size())) != FALSE;
}

bool QueryInfo(const Handle& request, std::uint32_t infoLevel, std::string& buffer,
               std::int32_t& length) {
  DWORD size = static_cast<DWORD>(length);
  const bool found =
      HttpQueryInfoA(request.get(), infoLevel, buffer.data(), &size, nullptr) != FALSE;
  length = static_cast<std::int32_t>(size);
  return found;
}

Handle OpenUrl(const Handle& root, const std::string& url) {
  return Handle(InternetOpenUrlA(root.get(), url.c_str(), nullptr, 0, 0, 0));
}

std::optional<std::int64_t> AnnouncedLength(const Handle& url) {
  char digits[32] = {};
  DWORD size = sizeof digits;
  if (HttpQueryInfoA(url.get(), HTTP_QUERY_CONTENT_LENGTH, digits, &size, nullptr) == FALSE) {
    return std::nullopt;
  }
  std::int64_t length = 0;
  if (std::from_chars(digits, digits + size, length).ec != std::errc{}) return std::nullopt;
  return length;
}

bool Read(const Handle& url, char* buffer, std::uint32_t size, std::uint32_t& bytesRead) {
  DWORD count = 0;
  const bool read = InternetReadFile(url.get(), buffer, size, &count) != FALSE;
  bytesRead = count;
  return read;
}

}  // namespace platform::http
