#pragma once

// Parts of sentences.

#include <cstdint>
#include <string>
#include <vector>

namespace publish {

/// Such as "1,234 bytes" and "1 byte".
[[nodiscard]] std::string Number(std::uint64_t number, const char* unit);

/// Names with commas; of many, the first few and how many more.
[[nodiscard]] std::string Some(const std::vector<std::string>& names);

}  // namespace publish
