#pragma once

#include <string>
#include <string_view>

namespace publish {

/// The version, such as 1.0.3, that the version record of a Windows program tells; empty when there
/// is no record. program: the bytes of its file.
[[nodiscard]] std::string RecordedVersion(std::string_view program);

}  // namespace publish
