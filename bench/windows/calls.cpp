#include "bench/calls.h"

#include <windows.h>

#include <wininet.h>

#include <algorithm>
#include <vector>

namespace floors {
namespace {

/// As the program asks for what is secure, so that the connections are kept alike.
DWORD FlagsFor(const Server& server, DWORD secureFlag) {
  return server.IsSecure() ? secureFlag | INTERNET_FLAG_KEEP_CONNECTION : 0;
}

bool QueryWithHead(const Server& server, const std::string& path, DWORD infoLevel) {
  const HINTERNET root =
      InternetOpenA(UserAgent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
  const HINTERNET connection = InternetConnectA(root, server.host.c_str(), server.port, nullptr,
                                                nullptr, INTERNET_SERVICE_HTTP, 0, 0);
  const HINTERNET request = HttpOpenRequestA(connection, "HEAD", path.c_str(), "HTTP/1.0", nullptr,
                                             nullptr, FlagsFor(server, INTERNET_FLAG_SECURE), 0);
  HttpAddRequestHeadersA(request, nullptr, 0, HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE);
  HttpSendRequestA(request, nullptr, 0, nullptr, 0);
  char value[BlockSize];
  DWORD size = sizeof value;
  const bool found = HttpQueryInfoA(request, infoLevel, value, &size, nullptr) != FALSE;
  InternetCloseHandle(request);
  InternetCloseHandle(connection);
  InternetCloseHandle(root);
  return found;
}

bool WriteInBlocks(HANDLE file, const std::vector<char>& buffer, DWORD count) {
  for (DWORD at = 0; at < count; at += BlockSize) {
    DWORD written = 0;
    const DWORD size = std::min<DWORD>(BlockSize, count - at);
    if (WriteFile(file, buffer.data() + at, size, &written, nullptr) == FALSE) return false;
  }
  return true;
}

}  // namespace

bool Probe(const Server& server, const std::string& path) {
  return QueryWithHead(server, path, HTTP_QUERY_STATUS_CODE) &&
         QueryWithHead(server, path, HTTP_QUERY_CONTENT_LENGTH);
}

bool Fetch(const Server& server, const std::string& path, const std::string& target,
           std::size_t readSize) {
  const HINTERNET root =
      InternetOpenA(UserAgent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
  const HINTERNET body =
      InternetOpenUrlA(root, server.Url(path).c_str(), nullptr, 0, FlagsFor(server, 0), 0);
  const HANDLE file = CreateFileA(target.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  std::vector<char> buffer(readSize);
  DWORD count = 0;
  bool done = true;
  do {
    done = InternetReadFile(body, buffer.data(), static_cast<DWORD>(readSize), &count) != FALSE &&
           WriteInBlocks(file, buffer, count);
  } while (done && count > 0);
  CloseHandle(file);
  InternetCloseHandle(body);
  InternetCloseHandle(root);
  return done;
}

bool Rename(const std::string& from, const std::string& to) {
  return MoveFileA(from.c_str(), to.c_str()) != FALSE;
}

}  // namespace floors
