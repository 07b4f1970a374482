#include "platform/http.h"

#include <curl/curl.h>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "platform/window.h"

namespace platform::http {
namespace {

// Numbers of wininet.h.
constexpr std::int32_t DirectAccess = 1;  // INTERNET_OPEN_TYPE_DIRECT
constexpr std::int32_t ProxyAccess = 3;   // INTERNET_OPEN_TYPE_PROXY
constexpr std::uint32_t QueryContentLength = 5;
constexpr std::uint32_t QueryStatusCode = 19;

constexpr int PollInterval = 50;            // milliseconds; nobody feels a click wait that long
constexpr long MostRedirections = 10;       // so that a circle of them ends
constexpr long MostReceived = 256L * 1024;  // bytes of a body that wait for their reader
constexpr const char* SecureProtocol = "https";
constexpr const char* Protocols = "http,https";

struct CloseEasy {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct CloseMulti {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
struct CloseList {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
struct CloseUrl {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using Easy = std::unique_ptr<CURL, CloseEasy>;
using Multi = std::unique_ptr<CURLM, CloseMulti>;
using List = std::unique_ptr<curl_slist, CloseList>;
using ParsedUrl = std::unique_ptr<CURLU, CloseUrl>;

/// What the handles of this file point to.
struct InternetObject {
  InternetObject() = default;
  virtual ~InternetObject() = default;
  InternetObject(const InternetObject&) = delete;
  InternetObject& operator=(const InternetObject&) = delete;
};

struct Root : InternetObject {
  std::string userAgent;
  std::int32_t accessType = 0;
  std::string proxy;
};

struct Connection : InternetObject {
  const Root* root = nullptr;
  std::string address;  // host and port
};

/// What carries out the transfers, one after the other; making one for each took a tenth of a
/// probe.
CURLM* TheMulti() {
  static const Multi multi(curl_multi_init());
  return multi.get();
}

/// A request on its way, and what the library needs to live as long.
struct Transfer {
  Transfer() = default;
  ~Transfer() {
    if (easy) curl_multi_remove_handle(TheMulti(), easy.get());
  }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  ParsedUrl url;
  List headers;
  Easy easy;
  std::optional<CURLcode> result;  // once the transfer has ended
};

struct Request : InternetObject {
  Transfer transfer;
};

/// A GET that stands still whenever a block of its body is not yet asked for.
struct Download {
  Transfer transfer;
  std::string received;   // about MostReceived bytes at the most
  std::size_t taken = 0;  // of them, by readers
  bool paused = false;
  bool headIsComplete = false;
};

template <typename Object>
Object& As(const Handle& handle) {
  return static_cast<Object&>(*static_cast<InternetObject*>(handle.get()));
}

Handle HandleOf(std::unique_ptr<InternetObject> object) { return Handle(object.release()); }

std::size_t DropBody(const char* /*bytes*/, std::size_t size, std::size_t count,
                     void* /*request*/) {
  return size * count;
}

ParsedUrl Parse(const std::string& url) {
  ParsedUrl parsed(curl_url());
  const bool valid = curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(),
                                  CURLU_ALLOW_SPACE | CURLU_URLENCODE) == CURLUE_OK;
  return valid ? std::move(parsed) : nullptr;
}

bool IsSecure(const ParsedUrl& url) {
  char* scheme = nullptr;
  if (curl_url_get(url.get(), CURLUPART_SCHEME, &scheme, 0) != CURLUE_OK) return false;
  const bool secure = std::strcmp(scheme, SecureProtocol) == 0;
  curl_free(scheme);
  return secure;
}

bool AnsweredSecurely(CURL* easy) {
  const char* scheme = nullptr;
  curl_easy_getinfo(easy, CURLINFO_SCHEME, &scheme);
  return scheme != nullptr && strcasecmp(scheme, SecureProtocol) == 0;
}

/// Makes a transfer ready for its own settings; false when the URL is none, or no memory is left.
bool Prepare(Transfer& transfer, const Root& root, const std::string& url) {
  transfer.url = Parse(url);
  transfer.easy.reset(curl_easy_init());
  CURL* const easy = transfer.easy.get();
  if (!transfer.url || easy == nullptr) return false;
  curl_easy_setopt(easy, CURLOPT_CURLU, transfer.url.get());
  curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, 1L);
  curl_easy_setopt(easy, CURLOPT_FORBID_REUSE, 1L);
  curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(easy, CURLOPT_MAXREDIRS, MostRedirections);
  curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, Protocols);
  curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR,
                   IsSecure(transfer.url) ? SecureProtocol : Protocols);
  if (const char* authorities = std::getenv("SSL_CERT_FILE")) {
    curl_easy_setopt(easy, CURLOPT_CAINFO, authorities);
  }
  if (!root.userAgent.empty()) curl_easy_setopt(easy, CURLOPT_USERAGENT, root.userAgent.c_str());
  // Otherwise the environment tells, as for every program.
  if (root.accessType == DirectAccess) curl_easy_setopt(easy, CURLOPT_PROXY, "");
  if (root.accessType == ProxyAccess) curl_easy_setopt(easy, CURLOPT_PROXY, root.proxy.c_str());
  return true;
}

bool Begin(Transfer& transfer) {
  return curl_multi_add_handle(TheMulti(), transfer.easy.get()) == CURLM_OK;
}

/// Waits until the transfer can go on, for one poll at most, and lets it; then handles events.
void Advance(Transfer& transfer) {
  CURLM* const multi = TheMulti();
  int count = 0;
  if (curl_multi_poll(multi, nullptr, 0, PollInterval, nullptr) != CURLM_OK ||
      curl_multi_perform(multi, &count) != CURLM_OK) {
    transfer.result = CURLE_RECV_ERROR;
  }
  while (const CURLMsg* message = curl_multi_info_read(multi, &count)) {
    if (message->easy_handle == transfer.easy.get()) transfer.result = message->data.result;
  }
  window::ProcessPendingEventsInLoop();
}

std::optional<std::string> Header(CURL* easy, const char* name) {
  curl_header* header = nullptr;
  if (curl_easy_header(easy, name, 0, CURLH_HEADER, -1, &header) != CURLHE_OK) return std::nullopt;
  return header->value;
}

long StatusOf(CURL* easy) {
  long status = 0;
  curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
  return status;
}

/// Whether an answer stands for another one that is still to come.
bool IsPreliminary(CURL* easy) {
  const long status = StatusOf(easy);
  return status < 200 || (status >= 300 && status < 400 && Header(easy, "Location"));
}

std::size_t TakeHeaderLine(const char* line, std::size_t size, std::size_t count, void* target) {
  if (std::string_view(line, size * count).find_first_not_of("\r\n") == std::string_view::npos) {
    auto& download = *static_cast<Download*>(target);
    download.headIsComplete = !IsPreliminary(download.transfer.easy.get());
  }
  return size * count;
}

std::size_t TakeBody(const char* bytes, std::size_t size, std::size_t count, void* target) {
  auto& download = *static_cast<Download*>(target);
  download.headIsComplete = true;  // no body comes of an answer that stands for another one
  if (download.received.size() >= static_cast<std::size_t>(MostReceived)) {
    download.paused = true;
    return CURL_WRITEFUNC_PAUSE;
  }
  download.received.append(bytes, size * count);
  return size * count;
}

Download& DownloadOf(const Body& body) { return *static_cast<Download*>(body.get()); }

/// What was kept back goes on first.
void Unpause(Download& download) {
  if (!download.paused) return;
  download.paused = false;
  curl_easy_pause(download.transfer.easy.get(), CURLPAUSE_CONT);
}

/// Waits for more of the body, or its end.
void Receive(Download& download) {
  download.received.clear();
  download.taken = 0;
  while (download.received.empty() && !download.transfer.result) {
    Unpause(download);
    Advance(download.transfer);
  }
}

}  // namespace

void CloseInternetHandle::operator()(void* handle) const {
  delete static_cast<InternetObject*>(handle);
}

bool IsOffline() { return false; }

Handle OpenRoot(const std::string& userAgent, std::int32_t accessType, const std::string& proxy) {
  static const bool ready = [] {
    (void)std::signal(SIGPIPE, SIG_IGN);  // a connection that breaks is an error of its call
    return curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  }();
  if (!ready) return nullptr;
  auto root = std::make_unique<Root>();
  root->userAgent = userAgent;
  root->accessType = accessType;
  root->proxy = proxy;
  return HandleOf(std::move(root));
}

Handle Connect(const Handle& root, const std::string& host, std::uint16_t port) {
  if (host.empty()) return nullptr;
  auto connection = std::make_unique<Connection>();
  connection->root = &As<Root>(root);
  connection->address = host + ":" + std::to_string(port);
  return HandleOf(std::move(connection));
}

Handle OpenRequest(const Handle& connection, const std::string& verb, const std::string& objectName,
                   const std::string& version, const std::string& referrer, bool secure) {
  const auto& parent = As<Connection>(connection);
  const std::string url = (secure ? "https://" : "http://") + parent.address + objectName;
  auto request = std::make_unique<Request>();
  if (!Prepare(request->transfer, *parent.root, url)) return nullptr;
  CURL* const easy = request->transfer.easy.get();
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, DropBody);
  if (verb == "HEAD") {
    curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
  } else {
    curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, verb.c_str());
  }
  if (version == "HTTP/1.0") curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_0);
  if (!referrer.empty()) curl_easy_setopt(easy, CURLOPT_REFERER, referrer.c_str());
  return HandleOf(std::move(request));
}

bool AddRequestHeaders(const Handle& request, const std::string& headers) {
  auto& target = As<Request>(request).transfer;
  for (std::size_t at = 0; at < headers.size();) {
    const auto end = std::min(headers.find("\r\n", at), headers.size());
    curl_slist* longer =
        curl_slist_append(target.headers.get(), headers.substr(at, end - at).c_str());
    if (longer == nullptr) return false;
    (void)target.headers.release();  // it is part of the longer list now
    target.headers.reset(longer);
    at = end + std::strlen("\r\n");
  }
  return curl_easy_setopt(target.easy.get(), CURLOPT_HTTPHEADER, target.headers.get()) == CURLE_OK;
}

bool Send(const Handle& request, const std::string& optionalData) {
  auto& transfer = As<Request>(request).transfer;
  if (!optionalData.empty() || !Begin(transfer)) return false;
  while (!transfer.result) Advance(transfer);
  return transfer.result == CURLE_OK;
}

bool IsSecure(const Handle& request) {
  return AnsweredSecurely(As<Request>(request).transfer.easy.get());
}

bool QueryInfo(const Handle& request, std::uint32_t infoLevel, std::string& buffer,
               std::int32_t& length) {
  const auto& transfer = As<Request>(request).transfer;
  if (transfer.result != CURLE_OK) return false;
  CURL* const easy = transfer.easy.get();
  std::optional<std::string> value;
  if (infoLevel == QueryStatusCode) value = std::to_string(StatusOf(easy));
  if (infoLevel == QueryContentLength) value = Header(easy, "Content-Length");
  if (!value || value->size() > static_cast<std::size_t>(length)) return false;
  buffer.replace(0, value->size(), *value);
  length = static_cast<std::int32_t>(value->size());
  return true;
}

void CloseBody::operator()(void* body) const { delete static_cast<Download*>(body); }

Body OpenUrl(const Handle& root, const std::string& url) {
  auto download = std::make_unique<Download>();
  Transfer& transfer = download->transfer;
  if (!Prepare(transfer, As<Root>(root), url)) return nullptr;
  CURL* const easy = transfer.easy.get();
  curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
  curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, MostReceived);
  curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, TakeHeaderLine);
  curl_easy_setopt(easy, CURLOPT_HEADERDATA, download.get());
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, TakeBody);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, download.get());
  if (!Begin(transfer)) return nullptr;

  while (!download->headIsComplete && !transfer.result) Advance(transfer);
  if (!download->headIsComplete) return nullptr;
  return Body(download.release());
}

bool IsSecure(const Body& body) { return AnsweredSecurely(DownloadOf(body).transfer.easy.get()); }

std::optional<std::int64_t> AnnouncedLength(const Body& body) {
  const auto digits = Header(DownloadOf(body).transfer.easy.get(), "Content-Length");
  if (!digits) return std::nullopt;
  std::int64_t length = 0;
  const bool isNumber =
      std::from_chars(digits->data(), digits->data() + digits->size(), length).ec == std::errc{};
  return isNumber && length >= 0 ? std::optional(length) : std::nullopt;
}

bool Read(const Body& body, char* buffer, std::uint32_t size, std::uint32_t& bytesRead) {
  auto& download = DownloadOf(body);
  if (download.taken == download.received.size()) Receive(download);
  bytesRead = static_cast<std::uint32_t>(
      std::min<std::size_t>(size, download.received.size() - download.taken));
  std::copy_n(download.received.data() + download.taken, bytesRead, buffer);
  download.taken += bytesRead;
  return bytesRead > 0 || download.transfer.result == CURLE_OK;
}

}  // namespace platform::http
