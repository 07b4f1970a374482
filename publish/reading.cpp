#include "publish/reading.h"

#include "publish/progress.h"
#include "run/messages.h"
#include "script/version.h"
#include "transfer/http_probe.h"

namespace publish {
namespace {

/// One installation, which carries out nothing.
class Installation : public modPrincipal::ScriptSink {
 public:
  Installation(const std::string& version, bool probes)
      : installed(modPrincipal::VersionToNumber(version)), probe(probes) {}

  void TakeHeader(std::int32_t version, const std::string& /*url*/) override {
    offersUpdater = version > 0;
  }

  void TakeName(const std::string& taken) override { name = taken; }

  bool Holds(const modPrincipal::Condition& condition) override {
    opening = condition.line;
    return condition.HoldsFor(installed);
  }

  bool TakeAction(const modPrincipal::ActionLine& action) override {
    TakenAction taken = {action.line, opening, action.atOnce};
    const bool hasFile = action.command.effect == modPrincipal::Effect::Download;
    if (probe && hasFile && !action.arg2.empty()) {
      ShowProgress(recorded.size() + 1);
      const auto length = modFunciones::AvailableLength(action.arg2);
      taken.size = length.value_or(0);
      taken.missing = !length;
    }
    (taken.immediate ? immediate : recorded).push_back(taken);
    return !taken.missing;
  }

  std::string name;
  bool offersUpdater = false;
  std::vector<TakenAction> immediate;
  std::vector<TakenAction> recorded;

 private:
  const std::int32_t installed;
  const bool probe;
  std::size_t opening = 0;
};

}  // namespace

Reading ReadFor(const Script& script, const std::string& installed, bool probe) {
  using Kind = modPrincipal::Ending::Kind;
  Installation installation(installed, probe);
  const Kind kind = modPrincipal::ReadScript(script.lines, installation).kind;
  Reading reading = {"", installation.name, installation.offersUpdater, installation.immediate};
  auto first = installation.recorded.begin();
  const auto end = installation.recorded.end();
  // Of a refused script no row is carried out; the last one may be what it is refused for.
  if (kind == Kind::NotUnderstood) {
    reading.failure = modPrincipal::ScriptNotUnderstood;
    first = end;
  } else if (kind == Kind::NotAvailable) {
    reading.failure = modPrincipal::FilesNotAvailable;
    first = end - 1;
  }
  reading.actions.insert(reading.actions.end(), first, end);
  return reading;
}

}  // namespace publish
