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

Handle OpenRoot(std::string_view userAgent, std::int32_t accessType, std::string_view proxy) {
  const std::string proxyText(proxy);
  return Handle(InternetOpenA(std::string(userAgent).c_str(), static_cast<DWORD>(accessType),
                              NullWhenEmpty(proxyText), nullptr, 0));
}

Handle Connect(const Handle& root, std::string_view host, std::uint16_t port) {
  return Handle(InternetConnectA(root.get(), std::string(host).c_str(), port, nullptr, nullptr,
                                 INTERNET_SERVICE_HTTP, 0, 0));
}

Handle OpenRequest(const Handle& connection, std::string_view verb, std::string_view objectName,
                   std::string_view version, std::string_view referrer) {
  const std::string referrerText(referrer);
  return Handle(HttpOpenRequestA(connection.get(), std::string(verb).c_str(),
                                 std::string(objectName).c_str(), std::string(version).c_str(),
                                 NullWhenEmpty(referrerText), nullptr, 0, 0));
}

bool AddRequestHeaders(const Handle& request, std::string_view headers) {
  const std::string headerText(headers);
  return HttpAddRequestHeadersA(request.get(), NullWhenEmpty(headerText),
                                static_cast<DWORD>(headers.size()),
                                HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE) != FALSE;
}

bool Send(const Handle& request, std::string_view optionalData) {
  std::string data(optionalData);
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

Handle OpenUrl(const Handle& root, std::string_view url) {
  return Handle(InternetOpenUrlA(root.get(), std::string(url).c_str(), nullptr, 0, 0, 0));
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
