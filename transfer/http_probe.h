#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace modFunciones {

/// User agent of every request.
inline constexpr auto UserAgentText = "Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.0)";

/// INTERNET_OPEN_TYPE_PRECONFIG of wininet.h: the system's proxy settings.
inline constexpr std::int32_t PreconfiguredAccess = 0;

/// Bytes of every read, and of the buffer of every query.
inline constexpr std::int32_t TransferBlockSize = 1024;

// Selectors of HttpQueryInfo, from wininet.h.
inline constexpr std::uint32_t HTTP_QUERY_CONTENT_LENGTH = 5;
inline constexpr std::uint32_t HTTP_QUERY_STATUS_CODE = 19;

/// True when the machine is connected, or has not yet tried to be.
[[nodiscard]] bool IsOnline();

/// Sends one HEAD request in HTTP/1.0 over a connection of its own and returns one value of the
/// answer, empty on every failure. bufferLength is the room for the value in bytes, and its length
/// afterwards. secure: over https, and an answer that in the end came otherwise is a failure.
/// Yields once before the request is sent.
[[nodiscard]] std::string HttpHeadQuery(std::uint32_t infoLevel, const std::string& host,
                                        std::int16_t port, const std::string& objectName,
                                        std::int32_t& bufferLength, const std::string& optionalData,
                                        const std::string& extraHeaders,
                                        const std::string& referrer, const std::string& userAgent,
                                        std::int32_t accessType, const std::string& proxy,
                                        bool secure = false);

/// Splits a URL into UrlParts and probes it: true when it answers with status 200.
[[nodiscard]] bool IsAvailable(const std::string& url);

/// IsAvailable, and then the length in bytes that a second probe tells; nothing when the resource
/// is not available or its length is no number from 0 to 2,147,483,647.
[[nodiscard]] std::optional<std::int32_t> AvailableLength(const std::string& url);

}  // namespace modFunciones
