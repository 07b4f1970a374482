#include "run/self_replacement.h"

#include "install/file_helpers.h"
#include "install/process_control.h"
#include "platform/system.h"
#include "run/final_screen.h"
#include "run/launch.h"
#include "run/messages.h"
#include "run/run_state.h"

namespace modPrincipal {
namespace {

void AppendQuoted(std::string& parameters, const std::string& value) {
  if (!parameters.empty()) parameters += ' ';
  parameters += '"' + value + '"';
}

/// Writes a program into the own folder, starts it and ends this process; returns when it could not
/// be written.
void WriteAndSwitchTo(std::string_view fileName, const std::string& program) {
  if (!modFunciones::FileWriteAll(InOwnFolder(fileName), program)) return;
  modFunciones::LaunchFile(InOwnFolder(fileName), RelaunchParameters());
  platform::system::EndProcess();
}

void EndAndDelete(std::string_view fileName) {
  // A file that stays makes the writing that follows fail; a stale copy just stays.
  (void)modKillApp::KillApp(fileName);
  (void)modFunciones::FileDelete(InOwnFolder(fileName));
}

}  // namespace

std::string InOwnFolder(std::string_view fileName) {
  return platform::system::ExecutableFolder() + "\\" + std::string(fileName);
}

std::string RelaunchParameters() {
  std::string parameters;
  AppendQuoted(parameters, AppVersion);
  AppendQuoted(parameters, AppDiskPath);
  AppendQuoted(parameters, UpdateInfoUrl);
  if (!LaunchOnFinish.empty()) AppendQuoted(parameters, LaunchOnFinish);
  if (!ShowSuccessScreen.empty()) AppendQuoted(parameters, ShowSuccessScreen);
  if (!AppTitle.empty() && AppTitle != ProgramName) AppendQuoted(parameters, AppTitle);
  if (!AppIconFile.empty()) AppendQuoted(parameters, AppIconFile);
  return parameters;
}

void RemoveTemporaryCopy() { EndAndDelete(TempUpdaterName); }

void HandOverToNewUpdater(const std::string& program) {
  RemoveTemporaryCopy();
  if (!program.empty()) WriteAndSwitchTo(TempUpdaterName, program);
}

void ReplaceUpdater() {
  const std::string program = modFunciones::FileReadAll(InOwnFolder(TempUpdaterName));
  if (!program.empty()) {
    EndAndDelete(UpdaterName);
    WriteAndSwitchTo(UpdaterName, program);
  }
  FailWithMessage(std::string(RenameAdvice) + TempUpdaterName + std::string(RenameAdviceTarget) +
                  UpdaterName);
}

}  // namespace modPrincipal
