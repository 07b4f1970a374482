#include "script/parser.h"

#include "install/action_executor.h"
#include "run/messages.h"
#include "run/run_state.h"
#include "script/version.h"
#include "transfer/availability.h"

namespace modPrincipal {

std::vector<Fields> ScriptLines;
std::int32_t NewUpdaterVersion = 0;
std::string NewUpdaterUrl;
std::string AppDisplayName;

namespace {

/// Records, probes and carries out for the installed version.
class Recorder : public ScriptSink {
  void TakeHeader(std::int32_t version, const std::string& url) override {
    NewUpdaterVersion = version;
    if (version != 0) NewUpdaterUrl = url;
  }

  void TakeName(const std::string& name) override { AppDisplayName = name; }

  bool Holds(const Condition& condition) override {
    return condition.HoldsFor(VersionToNumber(AppVersion));
  }

  bool TakeAction(const ActionLine& action) override {
    const std::string word(action.command.word);
    if (!action.atOnce) return AddAction(word, action.arg1, action.arg2, action.arg3);
    RunAction(word, action.arg1, action.arg2, action.arg3);
    return true;
  }
};

}  // namespace

void ResetScript() {
  ScriptLines.clear();
  NewUpdaterVersion = 0;
  NewUpdaterUrl.clear();
  AppDisplayName.clear();
}

std::string ParseUpdateScript(std::vector<Fields>& lines) {
  Recorder recorder;
  const auto [kind, last] = ReadScript(lines, recorder);
  for (std::size_t i = 1; i <= last; ++i) {
    if (HasMarker(lines[i])) lines[i][0].erase(0, 1);
  }
  if (kind == Ending::Kind::NotUnderstood) return std::string(ScriptNotUnderstood);
  if (kind == Ending::Kind::NotAvailable) return std::string(FilesNotAvailable);
  return "";
}

}  // namespace modPrincipal
