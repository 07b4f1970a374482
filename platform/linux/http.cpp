#include "platform/http.h"

#include <curl/curl.h>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <variant>

#include "platform/window.h"

namespace platform::http {
namespace {

// Numbers of wininet.h.
constexpr std::uint32_t QueryContentLength = 5;
constexpr std::uint32_t QueryStatusCode = 19;

constexpr int PollInterval = 50;            // milliseconds; nobody feels a click wait that long
constexpr long MostRedirections = 10;       // so that a circle of them ends
constexpr long MostReceived = 256L * 1024;  // bytes of a body that wait for their reader
constexpr const char* SecureProtocol = "https";
constexpr const char* Protocols = "http,https";

template <auto Close>
struct Closer {
  void operator()(auto* object) const { Close(object); }
};
using Easy = std::unique_ptr<CURL, Closer<curl_easy_cleanup>>;
using Multi = std::unique_ptr<CURLM, Closer<curl_multi_cleanup>>;
using Url = std::unique_ptr<CURLU, Closer<curl_url_cleanup>>;

struct Root {
  std::string userAgent;
};

struct Connection {
  const Root* root;
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

  Url url;
  Easy easy;
  std::optional<CURLcode> result;  // once the transfer has ended
};

/// A GET that stands still while what has arrived is not yet asked for.
struct Download {
  Transfer transfer;
  std::string received;   // about MostReceived bytes at the most
  std::size_t taken = 0;  // of them, by readers
};

/// What a handle points to; a Transfer is a request.
using InternetObject = std::variant<Root, Connection, Transfer>;

template <typename Object>
Object& As(const Handle& handle) {
  return std::get<Object>(*static_cast<InternetObject*>(handle.get()));
}

Download& DownloadOf(const Body& body) { return *static_cast<Download*>(body.get()); }

Url Parse(const std::string& url) {
  Url parsed(curl_url());
  const bool valid = curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(),
                                  CURLU_ALLOW_SPACE | CURLU_URLENCODE) == CURLUE_OK;
  return valid ? std::move(parsed) : nullptr;
}

bool IsSecureUrl(const std::string& url) { return strncasecmp(url.c_str(), "https:", 6) == 0; }

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
  curl_easy_setopt(easy, CURLOPT_FORBID_REUSE, 1L);
  curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(easy, CURLOPT_MAXREDIRS, MostRedirections);
  curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, Protocols);
  curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR,
                   IsSecureUrl(url) ? SecureProtocol : Protocols);
  if (const char* authorities = std::getenv("SSL_CERT_FILE")) {
    curl_easy_setopt(easy, CURLOPT_CAINFO, authorities);
  }
  curl_easy_setopt(easy, CURLOPT_USERAGENT, root.userAgent.c_str());
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

/// As the first header line of that name tells it; the library goes by the last one.
std::optional<std::string> ContentLength(CURL* easy) {
  curl_header* header = nullptr;
  if (curl_easy_header(easy, "Content-Length", 0, CURLH_HEADER, -1, &header) != CURLHE_OK) {
    return std::nullopt;
  }
  return header->value;
}

std::size_t TakeBody(const char* bytes, std::size_t size, std::size_t count, void* target) {
  std::string& received = static_cast<Download*>(target)->received;
  if (received.size() >= static_cast<std::size_t>(MostReceived)) return CURL_WRITEFUNC_PAUSE;
  received.append(bytes, size * count);
  return size * count;
}

/// Waits for more of the body, or its end.
void Receive(Download& download) {
  download.received.clear();
  download.taken = 0;
  while (download.received.empty() && !download.transfer.result) {
    curl_easy_pause(download.transfer.easy.get(),
                    CURLPAUSE_CONT);  // what was kept back comes first
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
  if (!ready || accessType != 0 || !proxy.empty()) return nullptr;
  return Handle(new InternetObject(Root{userAgent}));
}

Handle Connect(const Handle& root, const std::string& host, std::uint16_t port) {
  if (host.empty()) return nullptr;
  return Handle(new InternetObject(Connection{&As<Root>(root), host + ":" + std::to_string(port)}));
}

Handle OpenRequest(const Handle& connection, const std::string& verb, const std::string& objectName,
                   const std::string& version, const std::string& referrer, bool secure) {
  if (verb != "HEAD" || version != "HTTP/1.0" || !referrer.empty()) return nullptr;
  const auto& parent = As<Connection>(connection);
  const std::string url = (secure ? "https://" : "http://") + parent.address + objectName;
  Handle request(new InternetObject(std::in_place_type<Transfer>));
  auto& transfer = As<Transfer>(request);
  if (!Prepare(transfer, *parent.root, url)) return nullptr;
  curl_easy_setopt(transfer.easy.get(), CURLOPT_NOBODY, 1L);
  curl_easy_setopt(transfer.easy.get(), CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_0);
  return request;
}

bool AddRequestHeaders(const Handle& /*request*/, const std::string& headers) {
  return headers.empty();
}

bool Send(const Handle& request, const std::string& optionalData) {
  auto& transfer = As<Transfer>(request);
  if (!optionalData.empty() || !Begin(transfer)) return false;
  while (!transfer.result) Advance(transfer);
  return transfer.result == CURLE_OK;
}

bool IsSecure(const Handle& request) { return AnsweredSecurely(As<Transfer>(request).easy.get()); }

bool QueryInfo(const Handle& request, std::uint32_t infoLevel, std::string& buffer,
               std::int32_t& length) {
  const auto& transfer = As<Transfer>(request);
  if (transfer.result != CURLE_OK) return false;
  CURL* const easy = transfer.easy.get();
  std::optional<std::string> value;
  if (long status = 0; infoLevel == QueryStatusCode &&
                       curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status) == CURLE_OK) {
    value = std::to_string(status);
  }
  if (infoLevel == QueryContentLength) value = ContentLength(easy);
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
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, TakeBody);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, download.get());
  if (!Begin(transfer)) return nullptr;

  Receive(*download);
  if (download->received.empty() && transfer.result != CURLE_OK) return nullptr;
  return Body(download.release());
}

bool IsSecure(const Body& body) { return AnsweredSecurely(DownloadOf(body).transfer.easy.get()); }

std::optional<std::int64_t> AnnouncedLength(const Body& body) {
  const auto digits = ContentLength(DownloadOf(body).transfer.easy.get());
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
