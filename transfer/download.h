#pragma once

#include <cstdint>
#include <string>

#include "transfer/publisher_check.h"

namespace modFunciones {

/// Fetches a URL with GET, either into the file targetPath (which is replaced) or, when that is
/// empty, into memory. Returns targetPath or the body; the empty text on failure, a body cut short
/// included. Yields before every read. While TransferProgressOn is set it advances the byte
/// counters and draws the progress. check: sees the body pass by.
[[nodiscard]] std::string DownloadUrl(const std::string& url, const std::string& targetPath,
                                      const std::string& userAgent, std::int32_t accessType,
                                      const std::string& proxy,
                                      modPrincipal::PublisherCheck* check = nullptr);

/// A progress text such as 12 KB/345 KB, rounded to the nearest kilobyte of 1,024 bytes.
[[nodiscard]] std::string KilobytesText(std::int64_t done, std::int64_t total);

/// KilobytesText, or from 10,000,000 bytes in total on a text such as 1.50 MB/12.00 MB, with the
/// decimal separator of the user's locale.
[[nodiscard]] std::string ProgressText(std::int64_t done, std::int64_t total);

}  // namespace modFunciones
