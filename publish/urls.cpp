#include "publish/urls.h"

#include <cctype>

#include "base/text.h"

namespace publish {

std::string UrlBelow(const std::string& url, const std::string& name) {
  constexpr std::string_view Plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  constexpr const char* Digits = "0123456789ABCDEF";
  std::string below = url;
  for (const char character : modFunciones::ToUtf8(name)) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '\\') {
      below += '/';
    } else if (Plain.find(character) != std::string_view::npos) {
      below += character;
    } else {
      below += {'%', Digits[byte / 16], Digits[byte % 16]};
    }
  }
  return below;
}

std::string Decoded(const std::string& part) {
  const auto isHex = [&](std::size_t at) {
    return at < part.size() && std::isxdigit(static_cast<unsigned char>(part[at])) != 0;
  };
  std::string decoded;
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (part[i] == '%' && isHex(i + 1) && isHex(i + 2)) {
      decoded += static_cast<char>(std::stoi(part.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      decoded += part[i];
    }
  }
  return decoded;
}

}  // namespace publish
