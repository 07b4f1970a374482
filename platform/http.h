#pragma once

// HTTP requests. The operations and their numbers are those of WinINet: an empty handle or false is
// failure, an empty text argument means "none", and each handle is closed by its owner's end, which
// has to come before that of the handle it was opened from.
//
// Calls come one after the other, and one body is on its way at a time: it is closed before the
// next one is opened or a request is sent. Closing a body gives up what is being read of it and
// nothing else, and does not wait for its server.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace platform::http {

struct CloseInternetHandle {
  void operator()(void* handle) const;
};
using Handle = std::unique_ptr<void, CloseInternetHandle>;

/// True when the system knows itself to be without a connection. Windows: InetIsOffline(0).
/// Linux: never.
[[nodiscard]] bool IsOffline();

/// accessType: 0 is INTERNET_OPEN_TYPE_PRECONFIG, the system's proxy settings. Linux: those
/// of the environment, such as http_proxy; another type, or a proxy, fails.
[[nodiscard]] Handle OpenRoot(const std::string& userAgent, std::int32_t accessType,
                              const std::string& proxy);

[[nodiscard]] Handle Connect(const Handle& root, const std::string& host, std::uint16_t port);

/// version: such as "HTTP/1.0". secure: over https, the certificate checked by the system's rules
/// (Linux: against the authorities in SSL_CERT_FILE where that is set). Redirections are followed.
/// Linux: what is no HEAD of HTTP/1.0, or has a referrer, fails.
[[nodiscard]] Handle OpenRequest(const Handle& connection, const std::string& verb,
                                 const std::string& objectName, const std::string& version,
                                 const std::string& referrer, bool secure);

/// Adds header lines, each replacing one of the same name. Linux: fails if there are any.
[[nodiscard]] bool AddRequestHeaders(const Handle& request, const std::string& headers);

/// Sends the request and waits for the head of the answer; events are handled meanwhile. Linux: a
/// request with optional data fails.
[[nodiscard]] bool Send(const Handle& request, const std::string& optionalData);

/// True when the answer came over https, whatever redirections lay between.
[[nodiscard]] bool IsSecure(const Handle& request);

/// Writes the text of a value of the answer into the buffer and its length into length, which holds
/// the room offered before. infoLevel: an HTTP_QUERY_ selector. False when the answer does not
/// carry the value or the room is too small. Linux: only status code and content length are known.
[[nodiscard]] bool QueryInfo(const Handle& request, std::uint32_t infoLevel, std::string& buffer,
                             std::int32_t& length);

struct CloseBody {
  void operator()(void* body) const;
};
/// The body of an answer, on its way.
using Body = std::unique_ptr<void, CloseBody>;

/// Starts a GET of an absolute URL; redirections are followed. Waits for the head of the answer,
/// whatever its status; events are handled meanwhile. Linux: and for the first of its body.
[[nodiscard]] Body OpenUrl(const Handle& root, const std::string& url);

/// As for a request.
[[nodiscard]] bool IsSecure(const Body& body);

/// Length of the body in bytes as the answer to OpenUrl announces it; nothing when it announces
/// none, or no number.
[[nodiscard]] std::optional<std::int64_t> AnnouncedLength(const Body& body);

/// Reads up to size bytes of the body into the buffer; 0 bytes are its end. Waits for the server
/// where it has to; events are handled meanwhile. Windows: a connection that closes early may look
/// like the end. Linux: it is a failure.
[[nodiscard]] bool Read(const Body& body, char* buffer, std::uint32_t size,
                        std::uint32_t& bytesRead);

}  // namespace platform::http
