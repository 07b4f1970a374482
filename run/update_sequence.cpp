#include "run/update_sequence.h"

#include <exception>
#include <string>
#include <utility>

#include "base/arrays.h"
#include "install/action_executor.h"
#include "platform/system.h"
#include "platform/window.h"
#include "run/final_screen.h"
#include "run/launch.h"
#include "run/messages.h"
#include "run/own_version.h"
#include "run/progress_window.h"
#include "run/run_state.h"
#include "run/self_replacement.h"
#include "script/action_table.h"
#include "script/parser.h"
#include "script/version.h"
#include "transfer/download.h"
#include "transfer/download_phase.h"
#include "transfer/http_probe.h"
#include "transfer/publisher_check.h"

namespace frmPrincipal {

void Form_Resize() {
  if (modPrincipal::SequenceStarted) return;
  modPrincipal::SequenceStarted = true;
  modPrincipal::CheckForUpdate();
}

}  // namespace frmPrincipal

namespace modPrincipal {
namespace {

namespace window = platform::window;

std::string FetchIntoMemory(const std::string& url, PublisherCheck* check = nullptr) {
  return modFunciones::DownloadUrl(url, "", modFunciones::UserAgentText,
                                   modFunciones::PreconfiguredAccess, "", check);
}

/// False when the script is not signed as it has to be: nothing of it is read then.
bool FetchScript(const std::string& url) {
  const std::string script = FetchIntoMemory(url);
  if (!AcceptScript(script)) return false;
  ScriptLines = CutScript(script);
  return true;
}

/// For the message, where memory ran out.
void FreeMemory() {
  ResetScript();
  ResetActionTable();
}

bool OffersNewerUpdater() {
  return modFunciones::ElementCount(ScriptLines) >= 2 &&
         NewUpdaterVersion > VersionToNumber(modFunciones::OwnVersion());
}

/// Hands over to the newer updater, which ends the process. Returns "" when the replacement was
/// given up and the run goes on, or the failure message to show.
std::string ReplaceOutdatedUpdater() {
  window::SetText(frmPrincipal::lblMensaje, FetchingUpdaterStatus);
  const auto length = modFunciones::AvailableLength(NewUpdaterUrl);
  if (!length) return std::string(UpdaterNotAvailable);
  TotalBytes = FileBytes = *length;
  TotalBytesDone = FileBytesDone = 0;

  window::SetText(frmPrincipal::lblNombreAplicacion,
                  std::string(ProgramName) + " v" + ScriptLines[0][0]);
  const std::string progress = modFunciones::KilobytesText(0, TotalBytes);
  window::SetText(frmPrincipal::lblFileProgreso, progress);
  window::SetText(frmPrincipal::lblTotalProgreso, progress);
  window::ProcessPendingEvents();

  TransferProgressOn = true;
  PublisherCheck check;
  std::string program = FetchIntoMemory(NewUpdaterUrl, &check);
  TransferProgressOn = false;
  if (!program.empty() && !std::move(check).Passes(NewUpdaterUrl)) return std::string(NotGenuine);
  // Of another length it is something else, the page of an error for example.
  if (program.size() != static_cast<std::size_t>(*length)) program.clear();
  HandOverToNewUpdater(program);
  return "";
}

std::string RunBothPhases() {
  // What was checked stays as it is until it is in place only if no other run downloads over it.
  const auto turn = PublishedDigests ? platform::system::TakeTurn() : nullptr;
  if (PublishedDigests && !turn) return std::string(WriteFailure);

  window::SetText(frmPrincipal::lblNombreAplicacion, AppDisplayName);
  window::SetText(frmPrincipal::lblMensaje, DownloadingStatus);
  const std::string failure = DownloadFiles();
  if (!failure.empty()) return failure;

  window::SetText(frmPrincipal::lblMensaje, InstallingStatus);
  window::SetEnabled(frmPrincipal::btCancelar, false);
  return RunActions();
}

/// Returns "" when both phases went well, or the failure message to show.
std::string RunPhases() {
  try {
    return RunBothPhases();
  } catch (const std::exception&) {
    FreeMemory();
    return std::string(WriteFailure);
  }
}

void RunSequence() {
  if (!modFunciones::IsOnline()) return FailWithMessage(NotOnline);
  window::SetText(frmPrincipal::lblMensaje, CheckingStatus);
  window::ProcessPendingEvents();

  const std::string url = modFunciones::WithoutKey(UpdateInfoUrl);
  if (!modFunciones::IsAvailable(url)) return FailWithMessage(InformationNotFound);
  if (!FetchScript(url)) return FailWithMessage(NotSigned);
  const std::string parseFailure = ParseUpdateScript(ScriptLines);

  // The updater comes first, even when it is too old to understand the script.
  if (OffersNewerUpdater()) {
    const std::string failure = ReplaceOutdatedUpdater();
    if (!failure.empty()) return FailWithMessage(failure);
  }
  if (!parseFailure.empty()) return FailWithMessage(parseFailure);
  PerformUpdate();
}

}  // namespace

void CheckForUpdate() {
  try {
    RunSequence();
  } catch (const std::exception&) {
    // Memory ran out, and before the phases only the script can ask for that much.
    FreeMemory();
    FailWithMessage(ScriptNotUnderstood);
  }
}

void PerformUpdate() {
  if (modFunciones::ElementCount(ActionCommand) == 0) return FinishWithMessage(NothingToDo);
  const std::string failure = RunPhases();
  if (!failure.empty()) return FailWithMessage(failure);

  if (ShowSuccessScreen == "NO") {
    if (!LaunchOnFinish.empty()) modFunciones::LaunchFile(LaunchOnFinish, "");
    platform::system::EndProcess();
  }
  FinishWithMessage(Success);
}

}  // namespace modPrincipal
