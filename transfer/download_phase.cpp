#include "transfer/download_phase.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/arrays.h"
#include "base/rounding.h"
#include "install/path_macros.h"
#include "platform/files.h"
#include "platform/window.h"
#include "run/messages.h"
#include "run/progress_bar.h"
#include "run/progress_window.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "script/commands.h"
#include "transfer/download.h"
#include "transfer/http_probe.h"
#include "transfer/publisher_check.h"

namespace modPrincipal {
namespace {

/// Returns "" or the failure message to show.
std::string_view DownloadRow(std::size_t row) {
  FileBytesDone = 0;
  FileBytes = ActionSize[row];
  modFunciones::CreateFolderPath(ActionArg1[row]);
  const std::string target = ActionArg1[row] + ".tmp";
  PublisherCheck check;
  const bool arrived =
      !modFunciones::DownloadUrl(ActionArg2[row], target, modFunciones::UserAgentText,
                                 modFunciones::PreconfiguredAccess, "", &check)
           .empty();
  if (arrived && std::move(check).Passes(ActionArg2[row])) return "";
  // Nothing takes it for a download any more; every later run begins it anew.
  if (PublishedDigests) (void)platform::files::Delete(target);
  return arrived ? NotGenuine : WriteFailure;
}

}  // namespace

std::string DownloadFiles() {
  namespace window = platform::window;

  TotalBytes = 0;
  TotalBytesDone = 0;
  for (const std::int32_t size : ActionSize) TotalBytes += size;
  if (static_cast<double>(TotalBytes) / 1024 > modFunciones::FreeDiskSpaceKB("C:")) {
    return std::string(NoDiskSpace);
  }
  // What lies where a download would be is no download, whoever left it.
  if (TotalBytes < 1 && !PublishedDigests) return "";

  TransferProgressOn = true;
  const auto count = static_cast<std::size_t>(modFunciones::ElementCount(ActionCommand));
  for (std::size_t row = 0; row < count; ++row) {
    if (IsDownload(ActionCommand[row])) {
      const std::string_view failure = DownloadRow(row);
      if (!failure.empty()) return std::string(failure);
    }
    window::SetText(frmPrincipal::lblFileProgreso, "");
  }
  modFunciones::DrawProgressBar(frmPrincipal::picFile, 0);
  modFunciones::DrawProgressBar(frmPrincipal::picTotal, 0);
  window::SetText(frmPrincipal::lblTotalProgreso, "");
  TransferProgressOn = false;
  return "";
}

}  // namespace modPrincipal

namespace modFunciones {

std::int32_t FreeDiskSpaceKB(std::string_view drive) {
  std::string root(drive);
  if (!root.ends_with('/')) root += '/';
  const auto space = platform::files::QueryDiskSpace(root);
  const double bytesPerCluster =
      static_cast<double>(space.bytesPerSector) * space.sectorsPerCluster;
  const double kilobytes = space.freeClusters / 1024.0 * bytesPerCluster;
  return static_cast<std::int32_t>(RoundToEven(std::min<double>(kilobytes, INT32_MAX)));
}

}  // namespace modFunciones
