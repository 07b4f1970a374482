#include "run/startup.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/arrays.h"
#include "base/replace.h"
#include "base/text.h"
#include "platform/system.h"
#include "platform/window.h"
#include "run/command_line.h"
#include "run/final_screen.h"
#include "run/messages.h"
#include "run/own_version.h"
#include "run/progress_window.h"
#include "run/run_state.h"
#include "run/self_replacement.h"
#include "run/update_sequence.h"

namespace modPrincipal {
namespace {

namespace window = platform::window;
using Arguments = std::vector<std::string>;

// A URL that names the former script gets the current one.
constexpr std::string_view FormerScriptName = "KDvelomar.txt";
constexpr std::string_view ScriptName = "KDvelomar2.txt";

void ShowCaptions() {
  window::SetText(frmPrincipal::lblFile, FileCaption);
  window::SetText(frmPrincipal::lblTotal, TotalCaption);
  window::SetText(frmPrincipal::btCancelar, CancelCaption);
}

/// Stores the required arguments; returns "" or what is missing.
std::string_view StoreRequired(const Arguments& arguments) {
  if (modFunciones::ElementCount(arguments) < 4) return MissingArguments;
  if (arguments[1].empty()) return MissingVersion;
  AppVersion = arguments[1];
  if (arguments[2].empty()) return MissingDiskPath;
  AppDiskPath = arguments[2];
  if (arguments[3].empty()) return MissingUrl;
  UpdateInfoUrl = modFunciones::ReplaceAll(arguments[3], FormerScriptName, ScriptName);
  return "";
}

void StoreTitle(const std::string& title) {
  if (title.empty()) {
    AppTitle = ProgramName;
    window::SetWindowCaption(std::string(ProgramName) + " v" + modFunciones::OwnVersion());
  } else {
    AppTitle = title;
    window::SetWindowCaption(title);
  }
}

void StoreIcon(const std::string& file) {
  if (file.empty()) return;
  AppIconFile = file;
  window::SetWindowIcon(file);
}

void StoreOptional(const Arguments& arguments) {
  const std::int32_t count = modFunciones::ElementCount(arguments);
  if (count > 4) LaunchOnFinish = arguments[4];
  if (count > 5) ShowSuccessScreen = modFunciones::UpperCase(arguments[5]);
  if (count > 6) StoreTitle(arguments[6]);
  if (count > 7) StoreIcon(arguments[7]);
}

bool IsTemporaryCopy() {
  return modFunciones::LowerCase(platform::system::ExecutableBaseName()) !=
         modFunciones::LowerCase(ProgramName);
}

}  // namespace

void Main() {
  ResetRunState();
  frmPrincipal::Load(frmPrincipal::Form_Resize);
  ShowCaptions();

  const Arguments arguments = modFunciones::SplitCommandLine();
  const std::string_view failure = StoreRequired(arguments);
  if (!failure.empty()) return FailWithMessage(failure);
  StoreOptional(arguments);

  if (IsTemporaryCopy()) return ReplaceUpdater();
  RemoveTemporaryCopy();
  window::Show();
}

}  // namespace modPrincipal
