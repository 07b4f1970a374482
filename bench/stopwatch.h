#pragma once

#include <chrono>

/// Milliseconds that the work takes.
template <typename Work>
double TimeOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}
