#pragma once

#include <cstdint>
#include <string>

namespace modOcxDllReg {

inline constexpr std::int32_t RegisterMode = 0;
inline constexpr std::int32_t UnregisterMode = 1;

/// Lets a component library register (unregister) itself through its own entry point, run on a
/// worker thread. True when the entry point ended within 10,000 milliseconds, whatever it returned.
[[nodiscard]] bool RegisterOcxDll(const std::string& path, std::int32_t mode);

}  // namespace modOcxDllReg
