#include "transfer/download.h"

#include <array>
#include <exception>
#include <string_view>
#include <utility>

#include "base/rounding.h"
#include "install/file_helpers.h"
#include "platform/files.h"
#include "platform/http.h"
#include "platform/system.h"
#include "platform/window.h"
#include "run/progress_bar.h"
#include "run/progress_window.h"
#include "run/run_state.h"
#include "transfer/http_probe.h"
#include "transfer/url.h"

namespace modFunciones {
namespace {

namespace files = platform::files;

using modPrincipal::FileBytes;
using modPrincipal::FileBytesDone;
using modPrincipal::PublisherCheck;
using modPrincipal::TotalBytes;
using modPrincipal::TotalBytesDone;
using modPrincipal::TransferProgressOn;

constexpr std::int64_t MbDisplayThreshold = 10'000'000;
constexpr std::int64_t BytesPerKb = 1024;
constexpr std::int64_t BytesPerMb = 1'048'576;

std::string Kilobytes(std::int64_t bytes) {
  return std::to_string(RoundToEven(static_cast<double>(bytes) / static_cast<double>(BytesPerKb)));
}

/// Two decimals, halves rounded up.
std::string Megabytes(std::int64_t bytes) {
  std::string text = std::to_string((bytes * 100 + BytesPerMb / 2) / BytesPerMb);
  if (text.size() < 3) text.insert(0, 3 - text.size(), '0');
  return text.insert(text.size() - 2, platform::system::DecimalSeparator());
}

/// A size of 0 that was announced as such is done as soon as it has begun.
float Fraction(std::int64_t done, std::int64_t total) {
  if (total == 0) return 1.0F;
  return static_cast<float>((100.0 / static_cast<double>(total) * static_cast<double>(done)) /
                            100.0);
}

void ShowProgress() {
  using namespace frmPrincipal;
  const std::int64_t totalDone = TotalBytesDone + FileBytesDone;
  platform::window::SetText(lblFileProgreso, ProgressText(FileBytesDone, FileBytes));
  platform::window::SetText(lblTotalProgreso, ProgressText(totalDone, TotalBytes));
  DrawProgressBar(picFile, Fraction(FileBytesDone, FileBytes));
  DrawProgressBar(picTotal, Fraction(totalDone, TotalBytes));
}

/// A connection that breaks may look like the end of the body. Whole is a body of the length that
/// its own answer announced or, where that told none, of at least the length that the probe told.
bool IsWhole(const platform::http::Body& body, std::int64_t received) {
  if (const auto announced = platform::http::AnnouncedLength(body)) return received == *announced;
  return !TransferProgressOn || received >= FileBytes;
}

/// Hands the body to store, block by block. False when a read fails, store refuses a block, or the
/// body is not whole.
template <typename Store>
bool ReadBody(const platform::http::Body& body, PublisherCheck* check, Store store) {
  std::array<char, TransferBlockSize> buffer{};
  std::int64_t received = 0;
  std::uint32_t bytesRead = 0;
  do {
    platform::window::ProcessPendingEventsInLoop();
    if (!platform::http::Read(body, buffer.data(), TransferBlockSize, bytesRead)) return false;
    received += bytesRead;
    if (TransferProgressOn) {
      FileBytesDone += bytesRead;
      ShowProgress();
    }
    const std::string_view block(buffer.data(), bytesRead);
    if (check != nullptr) check->Add(block);
    if (bytesRead > 0 && !store(block)) return false;
  } while (bytesRead > 0);
  return IsWhole(body, received);
}

std::string ReadIntoFile(const platform::http::Body& body, PublisherCheck* check,
                         const std::string& targetPath) {
  if (!FileDelete(targetPath)) return "";
  files::File file = files::Create(targetPath);
  if (!file) return "";
  const bool complete =
      ReadBody(body, check, [&](std::string_view block) { return files::Write(file, block); });
  return complete && files::Close(std::move(file)) ? targetPath : "";
}

std::string ReadIntoMemory(const platform::http::Body& body, PublisherCheck* check) {
  std::string content;
  const bool complete = ReadBody(body, check, [&](std::string_view block) {
    content += block;
    return true;
  });
  if (!complete) content.clear();
  return content;
}

}  // namespace

std::string KilobytesText(std::int64_t done, std::int64_t total) {
  return Kilobytes(done) + " KB/" + Kilobytes(total) + " KB";
}

std::string ProgressText(std::int64_t done, std::int64_t total) {
  if (total < MbDisplayThreshold) return KilobytesText(done, total);
  return Megabytes(done) + " MB/" + Megabytes(total) + " MB";
}

std::string DownloadUrl(const std::string& url, const std::string& targetPath,
                        const std::string& userAgent, std::int32_t accessType,
                        const std::string& proxy, PublisherCheck* check) {
  const platform::http::Handle root = platform::http::OpenRoot(userAgent, accessType, proxy);
  if (!root) return "";
  const platform::http::Body body = platform::http::OpenUrl(root, url);
  if (!body || (IsSecureUrl(url) && !platform::http::IsSecure(body))) return "";

  std::string result;
  try {
    result =
        targetPath.empty() ? ReadIntoMemory(body, check) : ReadIntoFile(body, check, targetPath);
  } catch (const std::exception&) {
    // A body that does not fit into memory is a failed download.
  }
  if (TransferProgressOn) TotalBytesDone += FileBytesDone;
  return result;
}

}  // namespace modFunciones
