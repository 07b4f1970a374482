#include "transfer/http_probe.h"

#include "base/arrays.h"
#include "base/decimal.h"
#include "platform/http.h"
#include "platform/window.h"
#include "transfer/url.h"

namespace modFunciones {
namespace {

std::string QueryUrlParts(std::uint32_t infoLevel) {
  if (ElementCount(UrlParts) == 0) return "";
  const auto port = PortNumber(UrlParts[1]);
  if (!port) return "";
  std::int32_t bufferLength = TransferBlockSize;
  return HttpHeadQuery(infoLevel, UrlParts[0], *port, UrlParts[2], bufferLength, "", "", "",
                       UserAgentText, PreconfiguredAccess, "", ElementCount(UrlParts) > 3);
}

}  // namespace

bool IsOnline() { return !platform::http::IsOffline(); }

std::string HttpHeadQuery(std::uint32_t infoLevel, const std::string& host, std::int16_t port,
                          const std::string& objectName, std::int32_t& bufferLength,
                          const std::string& optionalData, const std::string& extraHeaders,
                          const std::string& referrer, const std::string& userAgent,
                          std::int32_t accessType, const std::string& proxy, bool secure) {
  namespace http = platform::http;

  const http::Handle root = http::OpenRoot(userAgent, accessType, proxy);
  if (!root) return "";
  const http::Handle connection = http::Connect(root, host, static_cast<std::uint16_t>(port));
  if (!connection) return "";
  const http::Handle request =
      http::OpenRequest(connection, "HEAD", objectName, "HTTP/1.0", referrer, secure);
  if (!request) return "";
  platform::window::ProcessPendingEvents();

  // Headers that are not added and a request that is not sent show in the query below.
  (void)http::AddRequestHeaders(request, extraHeaders);
  (void)http::Send(request, optionalData);
  if (secure && !http::IsSecure(request)) return "";

  std::string buffer(static_cast<std::size_t>(bufferLength), ' ');
  if (!http::QueryInfo(request, infoLevel, buffer, bufferLength)) return "";
  return buffer.substr(0, static_cast<std::size_t>(bufferLength));
}

bool IsAvailable(const std::string& url) {
  UrlParts = SplitUrl(url);
  return QueryUrlParts(HTTP_QUERY_STATUS_CODE) == "200";
}

std::optional<std::int32_t> AvailableLength(const std::string& url) {
  if (!IsAvailable(url)) return std::nullopt;
  return DecimalToInt32(QueryUrlParts(HTTP_QUERY_CONTENT_LENGTH));
}

}  // namespace modFunciones
