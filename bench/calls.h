#pragma once

// The system's calls that an update cannot do without, and nothing around them.

#include <cstddef>
#include <cstdint>
#include <string>

namespace floors {

inline constexpr auto UserAgent = "Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.0)";

/// Every body is written in blocks of this many bytes.
inline constexpr std::size_t BlockSize = 1024;

struct Server {
  std::string scheme;  // http, or https, whose certificates are checked as the program does
  std::string host;
  std::uint16_t port;

  [[nodiscard]] bool IsSecure() const { return scheme == "https"; }
  [[nodiscard]] std::string Url(const std::string& path) const {
    return scheme + "://" + host + ":" + std::to_string(port) + path;
  }
};

/// Two HEAD requests in HTTP/1.0, each on a connection of its own: one for the status and one for
/// the length. False when either is missing.
[[nodiscard]] bool Probe(const Server& server, const std::string& path);

/// A GET into a file, with reads of readSize bytes. Linux: the library says how much it reads.
[[nodiscard]] bool Fetch(const Server& server, const std::string& path, const std::string& target,
                         std::size_t readSize);

/// Fails when there is a file under the new name.
[[nodiscard]] bool Rename(const std::string& from, const std::string& to);

}  // namespace floors
