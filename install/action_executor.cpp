#include "install/action_executor.h"

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/arrays.h"
#include "base/decimal.h"
#include "base/text.h"
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

namespace modPrincipal {
namespace {

struct StyleWord {
  std::string_view word;
  std::uint32_t value;
};

// Icons of MessageBox: MB_ICONWARNING, MB_ICONINFORMATION, MB_ICONSTOP, none.
constexpr StyleWord MessageStyles[] = {
    {"EXCLAMATION", 48}, {"INFORMATION", 64}, {"CRITICAL", 16}, {"NOTHING", 0}};

// SW_ values of ShowWindow.
constexpr StyleWord WindowStyles[] = {{"HIDE", 0}, {"NORMAL", 4},   {"NORMALFOCUS", 1},
                                      {"MIN", 6},  {"MINFOCUS", 2}, {"MAX", 3}};

/// One action: the command word and its three arguments.
struct Action {
  std::string_view command;
  const std::string& arg1;
  const std::string& arg2;
  const std::string& arg3;
};

/// The styles chosen last: an unknown style word leaves them as they are.
struct Styles {
  std::uint32_t message = 0;
  std::uint32_t window = 0;
};

void ChooseStyle(std::uint32_t& style, std::span<const StyleWord> words,
                 const std::string& wanted) {
  const std::string word = modFunciones::UpperCase(wanted);
  for (const auto& known : words) {
    if (known.word == word) style = known.value;
  }
}

bool PutInPlace(const std::string& path) { return modFunciones::FileRename(path + ".tmp", path); }

bool AddFile(const std::string& path) {
  if (modFunciones::FileExists(path)) {
    const std::string backup = path + ".bak";
    (void)modFunciones::FileDelete(backup);  // one that stays makes the rename fail
    if (!modFunciones::FileRename(path, backup)) return false;
  }
  return PutInPlace(path);
}

bool UpdateFile(const std::string& path) {
  // Nothing was downloaded where the whole update announced no bytes: keep what is there.
  if (!modFunciones::FileExists(path + ".tmp")) return false;
  (void)modFunciones::FileDelete(path);  // one that stays makes the rename fail
  return PutInPlace(path);
}

void Execute(const Action& action, std::uint32_t windowStyle) {
  const std::string waitWord = modFunciones::UpperCase(action.arg2);
  if (waitWord != "WAIT" && waitWord != "NOWAIT") return;
  const auto program = platform::processes::Start(modFunciones::QuoteProgram(action.arg1),
                                                  static_cast<int>(windowStyle));
  if (program && waitWord == "WAIT") modFunciones::WaitForProcess(program->id);
}

void Pause(const std::string& milliseconds) {
  const auto duration = modFunciones::DecimalToInt32(milliseconds);
  if (duration) platform::processes::Sleep(static_cast<std::uint32_t>(*duration));
}

/// Carries out an action that may stand in a row or be immediate. False when a file could not be
/// deleted; no other failure counts.
bool CarryOut(const Action& action, Styles& styles) {
  if (action.command == "DELETE") return modFunciones::FileDelete(action.arg1);
  if (action.command == "MSG") {
    ChooseStyle(styles.message, MessageStyles, action.arg3);
    platform::window::ShowMessageBox(action.arg1, styles.message, AppTitle);
  } else if (action.command == "EXECUTE") {
    ChooseStyle(styles.window, WindowStyles, action.arg3);
    Execute(action, styles.window);
  } else if (action.command == "KILL") {
    (void)modKillApp::KillApp(action.arg1);  // nobody is told how these went
  } else if (action.command == "REGISTER") {
    (void)modOcxDllReg::RegisterOcxDll(action.arg1, modOcxDllReg::RegisterMode);
  } else if (action.command == "UNREGISTER") {
    (void)modOcxDllReg::RegisterOcxDll(action.arg1, modOcxDllReg::UnregisterMode);
  } else if (action.command == "SLEEP") {
    Pause(action.arg1);
  }
  return true;
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
    const Action action = {ActionCommand[row], ActionArg1[row], ActionArg2[row], ActionArg3[row]};
    if (action.command == "ADD") {
      if (!AddFile(action.arg1)) return std::string(WriteFailure);
    } else if (action.command == "UPDATE") {
      if (!UpdateFile(action.arg1)) return std::string(WriteFailure);
    } else if (!CarryOut(action, styles)) {
      outcome = DeleteFailure;
    }
    modFunciones::DrawProgressBar(frmPrincipal::picTotal,
                                  static_cast<float>(i + 1) / static_cast<float>(count));
  }
  return std::string(outcome);
}

std::string RunAction(std::string_view command, const std::string& arg1, const std::string& arg2,
                      const std::string& arg3) {
  Styles styles;
  (void)CarryOut({command, arg1, arg2, arg3}, styles);  // a failed deletion is not reported
  return "";
}

}  // namespace modPrincipal

namespace modFunciones {

std::string QuoteProgram(const std::string& commandLine) {
  constexpr const char* Blanks = " \t";
  if (commandLine.starts_with('"')) return commandLine;
  auto last = commandLine.find_last_not_of(Blanks);
  while (last != std::string::npos) {
    const std::string program = commandLine.substr(0, last + 1);
    if (platform::files::IsFile(program) || platform::files::IsFile(program + ".exe")) {
      return '"' + program + '"' + commandLine.substr(last + 1);
    }
    const auto blank = commandLine.find_last_of(Blanks, last);
    last = blank == std::string::npos ? blank : commandLine.find_last_not_of(Blanks, blank);
  }
  return commandLine;
}

}  // namespace modFunciones
