#include "run/self_replacement.h"

#include "base/replace.h"
#include "install/file_helpers.h"
#include "install/process_control.h"
#include "platform/system.h"
#include "run/final_screen.h"
#include "run/launch.h"
#include "run/messages.h"
#include "run/run_state.h"

namespace modPrincipal {
namespace {

/// The value as SplitCommandLine reads it: a backslash in front of a quote makes it a literal one,
/// so those at the end go behind the closing quote.
std::string Quoted(const std::string& value) {
  const auto last = value.find_last_not_of('\\');
  if (last == std::string::npos) return value;
  return '"' + modFunciones::ReplaceAll(value.substr(0, last + 1), "\"", "\\\"") + '"' +
         value.substr(last + 1);
}

void Append(std::string& parameters, const std::string& value) {
  if (!parameters.empty()) parameters += ' ';
  parameters += Quoted(value);
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
  Append(parameters, AppVersion);
  Append(parameters, AppDiskPath);
  Append(parameters, UpdateInfoUrl);
  if (!LaunchOnFinish.empty()) Append(parameters, LaunchOnFinish);
  if (!ShowSuccessScreen.empty()) Append(parameters, ShowSuccessScreen);
  if (!AppTitle.empty() && AppTitle != ProgramName) Append(parameters, AppTitle);
  if (!AppIconFile.empty()) Append(parameters, AppIconFile);
  return parameters;
}

void RemoveTemporaryCopy() { EndAndDelete(TempUpdaterName); }

void HandOverToNewUpdater(const std::string& program) {
  RemoveTemporaryCopy();
  // A script that promises a newer program than there is must not end in replacements for ever.
  const bool isNew = program != modFunciones::FileReadAll(InOwnFolder(UpdaterName));
  if (!program.empty() && isNew) WriteAndSwitchTo(TempUpdaterName, program);
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
