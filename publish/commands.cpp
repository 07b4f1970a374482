#include "publish/commands.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include "publish/check.h"
#include "publish/report.h"
#include "publish/simulate.h"
#include "publish/source.h"
#include "publish/versions.h"

namespace publish {
namespace {

constexpr int Failed = 2;

std::optional<Script> Load(const std::string& fileOrUrl) {
  auto text = Fetch(fileOrUrl);
  if (!text) {
    std::cerr << fileOrUrl << " cannot be read"
              << (IsUrl(fileOrUrl) ? ": the updater gets no answer with status 200 there, or over "
                                     "https no certificate that it trusts.\n"
                                   : ".\n");
    return std::nullopt;
  }
  return CutWithNumbers(std::move(*text));
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

Findings CheckFile(const std::string& name, const Script& script, const std::string& newest,
                   std::filesystem::path updater, bool asJson) {
  if (updater.empty() && !IsUrl(name)) updater = UpdaterAtHand(PathOf(name), script);
  Findings findings = Check(script, {newest, ReadFile(updater).value_or("")});
  ReportFindings(name, Verdict(script), findings, asJson);
  return findings;
}

}  // namespace

int RunCheck(const CheckOptions& options) {
  const auto script = Load(options.script);
  if (!script) return Failed;
  if (!options.updater.empty() &&
      RecordedVersion(ReadFile(PathOf(options.updater)).value_or("")).empty()) {
    std::cerr << options.updater << " cannot be read, or tells no version.\n";
    return Failed;
  }
  return StatusOf(
      CheckFile(options.script, *script, options.newest, PathOf(options.updater), options.asJson));
}

int RunSimulate(const SimulateOptions& options) {
  const auto script = Load(options.script);
  if (!script) return Failed;
  std::vector<Outcome> outcomes;
  for (const auto& installed : options.installed) {
    outcomes.push_back(Simulate(*script, installed, options.probe));
  }
  if (options.all) outcomes = SimulateAll(*script, options.probe);
  const Offer offer = SimulateOffer(*script, options.probe);
  ReportOutcomes(*script, offer, outcomes, options.probe, options.asJson);
  const bool isRefused = std::any_of(outcomes.begin(), outcomes.end(), [](const Outcome& outcome) {
    return !outcome.reading.failure.empty();
  });
  return isRefused || !offer.failure.empty() ? Failed : 0;
}

int RunMake(const Order& order, bool asJson) {
  const auto problems = Make(order);
  for (const auto& problem : problems) std::cerr << problem << "\n";
  if (!problems.empty()) return Failed;
  if (!asJson) {
    std::cout << "Upload what is in " << Utf8Of(order.site) << ": the folders first, " << ScriptName
              << " last.\n";
  }
  const std::string name = Utf8Of(order.site / ScriptName);
  const auto script = Load(name);
  return script ? StatusOf(CheckFile(name, *script, order.to, {}, asJson)) : Failed;
}

}  // namespace publish
