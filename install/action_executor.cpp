#include "install/action_executor.h"

#include <cstddef>
#include <cstdint>

#include "base/arrays.h"
#include "base/decimal.h"
#include "install/component_registration.h"
#include "install/file_helpers.h"
#include "install/process_control.h"
#include "platform/files.h"
#include "platform/processes.h"
#include "platform/window.h"
#include "run/messages.h"
#include "run/progress_bar.h"
#include "run/progress_window.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "script/commands.h"

namespace modPrincipal {
namespace {

/// One action: the command and its three arguments.
struct Action {
  const Command& command;
  const std::string& arg1;
  const std::string& arg2;
  const std::string& arg3;
};

/// The styles chosen last: an unknown style word leaves them as they are.
struct Styles {
  std::uint32_t message = 0;
  std::uint32_t window = 0;
};

void ChooseStyle(std::uint32_t& style, const Action& action) {
  style = ValueOf(action.command.Arguments().back().words, action.arg3).value_or(style);
}

bool PutInPlace(const std::string& path) { return modFunciones::FileRename(path + ".tmp", path); }

// Where nothing was downloaded, or another program keeps the download from being put in place, both
// find out before they touch what is there.

bool AddFile(const std::string& path) {
  if (modFunciones::FileExists(path)) {
    if (!platform::files::CanBeRenamed(path + ".tmp")) return false;
    const std::string backup = path + ".bak";
    (void)modFunciones::FileDelete(backup);  // one that stays makes the rename fail
    if (!modFunciones::FileRename(path, backup)) return false;
  }
  return PutInPlace(path);
}

bool UpdateFile(const std::string& path) {
  if (!platform::files::CanBeRenamed(path + ".tmp")) return false;
  (void)modFunciones::FileDelete(path);  // one that stays makes the rename fail
  return PutInPlace(path);
}

void Execute(const Action& action, std::uint32_t windowStyle) {
  const auto waits = ValueOf(action.command.Arguments()[1].words, action.arg2);
  if (!waits) return;
  const auto program = platform::processes::Start(modFunciones::QuoteProgram(action.arg1),
                                                  static_cast<int>(windowStyle));
  if (program && *waits != 0) modFunciones::WaitForProcess(program);
}

void Pause(const std::string& milliseconds) {
  const auto duration = modFunciones::DecimalToInt32(milliseconds);
  if (duration) platform::processes::Sleep(static_cast<std::uint32_t>(*duration));
}

/// Returns "" or the failure message.
std::string_view CarryOut(const Action& action, Styles& styles) {
  switch (action.command.verb) {
    case Verb::Add:
      return AddFile(action.arg1) ? "" : WriteFailure;
    case Verb::Update:
      return UpdateFile(action.arg1) ? "" : WriteFailure;
    case Verb::Delete:
      return modFunciones::FileDelete(action.arg1) ? "" : DeleteFailure;
    case Verb::Message:
      ChooseStyle(styles.message, action);
      platform::window::ShowMessageBox(action.arg1, styles.message, AppTitle);
      break;
    case Verb::Execute:
      ChooseStyle(styles.window, action);
      Execute(action, styles.window);
      break;
    case Verb::Kill:
      (void)modKillApp::KillApp(action.arg1);  // nobody is told how these went
      break;
    case Verb::Register:
      (void)modOcxDllReg::RegisterOcxDll(action.arg1, modOcxDllReg::RegisterMode);
      break;
    case Verb::Unregister:
      (void)modOcxDllReg::RegisterOcxDll(action.arg1, modOcxDllReg::UnregisterMode);
      break;
    case Verb::Sleep:
      Pause(action.arg1);
      break;
    case Verb::Name:
    case Verb::Version:
    case Verb::End:
      break;  // no actions
  }
  return "";
}

}  // namespace

std::string RunActions() {
  platform::window::SetText(frmPrincipal::lblFile, "");
  platform::window::SetText(frmPrincipal::lblTotal, InstallCaption);
  platform::window::ProcessPendingEvents();

  std::string_view outcome;
  Styles styles;
  const std::int32_t count = modFunciones::ElementCount(ActionCommand);
  for (std::int32_t i = 0; i < count; ++i) {
    const auto row = static_cast<std::size_t>(i);
    if (const Command* const command = FindCommand(ActionCommand[row])) {
      const std::string_view failure =
          CarryOut({*command, ActionArg1[row], ActionArg2[row], ActionArg3[row]}, styles);
      if (failure == WriteFailure) return std::string(failure);
      if (!failure.empty()) outcome = failure;
    }
    modFunciones::DrawProgressBar(frmPrincipal::picTotal,
                                  static_cast<float>(i + 1) / static_cast<float>(count));
  }
  return std::string(outcome);
}

std::string RunAction(std::string_view command, const std::string& arg1, const std::string& arg2,
                      const std::string& arg3) {
  const Command* const found = FindCommand(command);
  Styles styles;
  // A failed deletion is not reported.
  if (found != nullptr && found->MarkerWorks()) (void)CarryOut({*found, arg1, arg2, arg3}, styles);
  return "";
}

}  // namespace modPrincipal

namespace modFunciones {
namespace {

/// Whether a path is taken as it is written. Windows cuts dots off its end, and takes ".." away
/// with the name before it, before it looks whether there is such a folder.
bool IsTakenAsWritten(const std::string& path) {
  constexpr const char* Separators = "\\/";
  for (auto at = path.find_first_of(Separators); at != std::string::npos;) {
    const auto next = path.find_first_of(Separators, at + 1);
    const bool climbs = next == at + 3 && path.compare(at + 1, 2, "..") == 0;
    if (climbs && !platform::files::FolderExists(path.substr(0, at))) return false;
    at = next;
  }
  return !path.ends_with('.');
}

bool IsProgram(const std::string& path) {
  return IsTakenAsWritten(path) &&
         (platform::files::IsFile(path) || platform::files::IsFile(path + ".exe"));
}

}  // namespace

std::string QuoteProgram(const std::string& commandLine) {
  constexpr const char* Blanks = " \t";
  if (commandLine.starts_with('"')) return commandLine;
  auto last = commandLine.find_last_not_of(Blanks);
  while (last != std::string::npos) {
    const std::string program = commandLine.substr(0, last + 1);
    if (IsProgram(program)) return '"' + program + '"' + commandLine.substr(last + 1);
    const auto blank = commandLine.find_last_of(Blanks, last);
    last = blank == std::string::npos ? blank : commandLine.find_last_not_of(Blanks, blank);
  }
  return commandLine;
}

}  // namespace modFunciones
