#include "bench/calls.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace floors {
namespace {

struct CloseEasy {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
using Easy = std::unique_ptr<CURL, CloseEasy>;

Easy Open(const std::string& url) {
  Easy easy(curl_easy_init());
  curl_easy_setopt(easy.get(), CURLOPT_URL, url.c_str());
  curl_easy_setopt(easy.get(), CURLOPT_USERAGENT, UserAgent);
  if (const char* authorities = std::getenv("SSL_CERT_FILE")) {
    curl_easy_setopt(easy.get(), CURLOPT_CAINFO, authorities);
  }
  return easy;
}

bool Head(const std::string& url, long& status, curl_off_t& length) {
  const Easy easy = Open(url);
  curl_easy_setopt(easy.get(), CURLOPT_NOBODY, 1L);
  curl_easy_setopt(easy.get(), CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_0);
  const bool answered = curl_easy_perform(easy.get()) == CURLE_OK;
  curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &status);
  curl_easy_getinfo(easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  return answered;
}

std::size_t WriteInBlocks(const char* bytes, std::size_t size, std::size_t count, void* file) {
  const std::size_t total = size * count;
  for (std::size_t at = 0; at < total; at += BlockSize) {
    const std::size_t block = std::min(BlockSize, total - at);
    if (write(*static_cast<int*>(file), bytes + at, block) != static_cast<ssize_t>(block)) return 0;
  }
  return total;
}

}  // namespace

bool Probe(const Server& server, const std::string& path) {
  const std::string url = server.Url(path);
  long status = 0;
  curl_off_t length = -1;
  return Head(url, status, length) && status == 200 && Head(url, status, length) && length >= 0;
}

bool Fetch(const Server& server, const std::string& path, const std::string& target,
           std::size_t /*readSize*/) {
  int file = open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  const Easy easy = Open(server.Url(path));
  curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, WriteInBlocks);
  curl_easy_setopt(easy.get(), CURLOPT_WRITEDATA, &file);
  const bool fetched = curl_easy_perform(easy.get()) == CURLE_OK;
  close(file);
  return fetched;
}

bool Rename(const std::string& from, const std::string& to) {
  return renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
}

}  // namespace floors
