#include "publish/commands.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include "publish/check.h"
#include "publish/make.h"
#include "publish/report.h"
#include "publish/simulate.h"
#include "publish/source.h"
#include "publish/versions.h"

namespace publish {
namespace {

constexpr int Failed = 2;

std::optional<Script> Load(const std::string& fileOrUrl, bool asJson) {
  auto text = Fetch(fileOrUrl);
  if (text) return CutWithNumbers(std::move(*text));
  ReportProblems({fileOrUrl + " " + WhyUnreadable(fileOrUrl) + "."}, asJson);
  return std::nullopt;
}

/// The updater that the header names, where it lies beside the script or where the script's site
/// keeps it.
std::filesystem::path UpdaterAtHand(const std::filesystem::path& scriptFile, const Script& script) {
  std::string url = script.lines.empty() ? "" : FieldAt(script.lines[0], 1);
  // The longest end of the URL that is a file below the script's folder.
  for (auto slash = url.find('/'); slash != std::string::npos; slash = url.find('/')) {
    url.erase(0, slash + 1);
    const auto file = scriptFile.parent_path() / PathOf(url);
    std::error_code error;
    if (!url.starts_with('/') && std::filesystem::is_regular_file(file, error)) return file;
  }
  return {};
}

/// The folder of a script that is a file.
std::filesystem::path SiteOf(const std::string& name) {
  if (IsUrl(name)) return {};
  const auto folder = PathOf(name).parent_path();
  return folder.empty() ? "." : folder;
}

Findings CheckAsPublished(const std::string& name, const Script& script, const std::string& newest,
                          std::filesystem::path updater) {
  if (updater.empty() && !IsUrl(name)) updater = UpdaterAtHand(PathOf(name), script);
  return Check(script, {newest, ReadFile(updater).value_or(""), SiteOf(name)});
}

}  // namespace

int RunCheck(const CheckOptions& options) {
  const auto script = Load(options.script, options.asJson);
  if (!script) return Failed;
  if (!options.updater.empty() &&
      RecordedVersion(ReadFile(PathOf(options.updater)).value_or("")).empty()) {
    ReportProblems({options.updater + " cannot be read, or tells no version."}, options.asJson);
    return Failed;
  }
  const Findings findings =
      CheckAsPublished(options.script, *script, options.newest, PathOf(options.updater));
  ReportFindings({options.script, Verdict(*script), findings}, options.asJson);
  return StatusOf(findings);
}

int RunSimulate(const SimulateOptions& options) {
  const auto script = Load(options.script, options.asJson);
  if (!script) return Failed;
  std::vector<Outcome> outcomes;
  for (const auto& installed : options.installed) {
    outcomes.push_back(Simulate(*script, installed, options.probe));
  }
  if (options.all) outcomes = SimulateAll(*script, options.probe);
  if (!options.site.empty())
    CompareWithSite(*script, Site(PathOf(options.site), *script), outcomes);
  const Offer offer = SimulateOffer(*script, options.probe);
  const Form form = options.asJson ? Form::Json : options.inShort ? Form::Summary : Form::Text;
  ReportOutcomes(*script, offer, outcomes, options.probe, form);
  const bool goesWrong = std::any_of(outcomes.begin(), outcomes.end(), GoesWrong);
  return goesWrong || !offer.failure.empty() ? Failed : 0;
}

int RunMake(const Order& order, bool asJson) {
  const Made made = Make(order);
  if (!made.problems.empty()) {
    ReportProblems(made.problems, asJson);
    return Failed;
  }
  const std::string name = Utf8Of(order.site / ScriptName);
  const Script script = CutWithNumbers(made.script);
  const Findings findings =
      order.isTrial ? Check(script, {order.to, ""}) : CheckAsPublished(name, script, order.to, {});
  ReportMade(order, made, {name, Verdict(script), findings}, asJson);
  return StatusOf(findings);
}

}  // namespace publish
