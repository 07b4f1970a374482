#pragma once

// Parts of sentences.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace publish {

/// Such as "1,234 bytes" and "1 byte".
[[nodiscard]] std::string Number(std::uint64_t number, const char* unit);

/// Names with commas; of many, the first few and how many more.
[[nodiscard]] std::string Some(const std::vector<std::string>& names);

/// For a misspelt word " (check is the nearest)", say; empty when none of the words is near.
[[nodiscard]] std::string NearestAmong(const std::vector<std::string>& words,
                                       std::string_view misspelt);

}  // namespace publish
