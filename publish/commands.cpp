#include "publish/commands.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include "publish/check.h"
#include "publish/key_files.h"
#include "publish/make.h"
#include "publish/report.h"
#include "publish/signing.h"
#include "publish/simulate.h"
#include "publish/source.h"
#include "publish/trust.h"
#include "publish/upload.h"
#include "publish/versions.h"
#include "transfer/signed_script.h"

namespace publish {
namespace {

using Problems = std::vector<std::string>;

void TellNotes(const Problems& notes) {
  for (const auto& note : notes) std::cerr << "note: " << note << "\n";
}

/// A note where what stands behind the URL is not the key that may be meant.
Problems NotesOnKeyIn(const std::string& url) {
  const auto key = modFunciones::NamedKey(url);
  if (key && !modFunciones::IsSha256(*key)) {
    return {"What stands behind #key= is no 64 digits: an application that says so takes nothing."};
  }
  if (key || url.find('#') == std::string::npos) return {};
  return {
      "What stands behind the # names no key, since it does not begin with key=: an application "
      "that says so checks nothing."};
}

std::optional<Script> Load(const std::string& fileOrUrl, bool asJson) {
  if (IsUrl(fileOrUrl)) TellNotes(NotesOnKeyIn(fileOrUrl));
  auto text = Fetch(IsUrl(fileOrUrl) ? modFunciones::WithoutKey(fileOrUrl) : fileOrUrl);
  if (text) return CutWithNumbers(std::move(*text));
  ReportProblems({fileOrUrl + " " + WhyUnreadable(fileOrUrl) + "."}, asJson);
  return std::nullopt;
}

/// The folder of a script that is a file.
std::filesystem::path SiteOf(const std::string& name) {
  if (IsUrl(name)) return {};
  const auto folder = PathOf(name).parent_path();
  return folder.empty() ? "." : folder;
}

/// Nothing, and the reason is told, when there is no such key. A URL may name one, as on the
/// application's command line.
std::optional<Origin> OriginOf(const std::string& script, const std::string& key, bool asJson) {
  Origin origin = {SiteOf(script), std::nullopt};
  Problems problems;
  if (IsUrl(script)) origin.key = modFunciones::NamedKey(script);
  if (!key.empty()) origin.key = FingerprintMeant(key, origin.folder, problems);
  if (problems.empty()) return origin;
  ReportProblems(problems, asJson);
  return std::nullopt;
}

/// updater: the bytes of the file that the header offers; empty: that beside the script.
Examination CheckAsPublished(const Script& script, const std::string& newest, std::string updater,
                             const Origin& origin, bool probe) {
  const std::string url = script.lines.empty() ? "" : FieldAt(script.lines[0], 1);
  if (updater.empty()) updater = ReadFile(FileAtHand(origin.folder, url)).value_or("");
  return Check(script, {newest, updater, origin.folder, origin, probe});
}

/// The script as it was, if it was there.
void PutBack(const std::filesystem::path& script, const std::optional<std::string>& before) {
  std::error_code error;
  if (before) {
    (void)WriteFile(script, *before);  // nothing better is left to do
  } else {
    std::filesystem::remove(script, error);
  }
}

void TellKeys(const std::string& script, const std::vector<PrivateKey>& keys) {
  for (const auto& key : keys) {
    std::cout << script << " is signed for #key=" << FingerprintOf(key.PublicKey()) << "\n";
  }
}

/// A note for each key of the signatures of a text that is none of those to sign with.
Problems NotesOnLostKeys(const std::string& text, const std::vector<PrivateKey>& keys) {
  Problems lost = KeysNamedIn(text);
  for (const auto& key : keys) std::erase(lost, FingerprintOf(key.PublicKey()));
  std::erase(lost, "");
  for (auto& key : lost) {
    key.insert(0, "The script is no longer signed for #key=");
    key += ": who names it will be refused.";
  }
  return lost;
}

/// What make came to, with the script signed that it wrote.
Made MakeSigned(const Order& order, const std::vector<PrivateKey>& keys) {
  const auto script = order.site / ScriptName;
  const auto before = ReadFile(script);
  const Digests known = DigestsSignedBy(keys, script);
  Made made;
  if (keys.empty() && !KeysNamedIn(before.value_or("")).empty()) {
    made.problems.push_back("The script " + Utf8Of(script) +
                            " is signed: name its key with --key.");
    return made;
  }
  made = Make(order);
  for (auto& note : NotesOnLostKeys(before.value_or(""), keys)) made.notes.push_back(note);
  if (keys.empty() || order.isTrial || !made.problems.empty()) return made;
  SignFile(script, {keys, {}, known}, made.problems);
  if (!made.problems.empty()) PutBack(script, before);
  made.script = ReadFile(script).value_or("");
  return made;
}

}  // namespace

int RunCheck(const CheckOptions& options) {
  Problems problems;
  if (!options.newest.empty()) CheckVersion(options.newest, problems);
  if (!problems.empty()) {
    ReportProblems(problems, options.asJson);
    return Failed;
  }
  const auto script = Load(options.script, options.asJson);
  if (!script) return Failed;
  const auto origin = OriginOf(options.script, options.key, options.asJson);
  if (!origin) return Failed;
  const std::string updater = ReadFile(PathOf(options.updater)).value_or("");
  if (!options.updater.empty() && RecordedVersion(updater).empty()) {
    ReportProblems({options.updater + " cannot be read, or tells no version."}, options.asJson);
    return Failed;
  }
  const Examination examination =
      CheckAsPublished(*script, options.newest, updater, *origin, options.probe);
  ReportFindings(options.script, examination, options.asJson);
  return StatusOf(examination.findings);
}

int RunSimulate(const SimulateOptions& options) {
  if (!options.site.empty() && !std::filesystem::is_directory(PathOf(options.site))) {
    ReportProblems({options.site + " is no folder."}, options.asJson);
    return Failed;
  }
  const auto script = Load(options.script, options.asJson);
  if (!script) return Failed;
  const auto origin = OriginOf(options.script, options.key, options.asJson);
  if (!origin) return Failed;
  const Trust trust = TrustIn(*script, *origin);
  Problems notes;
  for (const auto& installed : options.installed) {
    CheckVersion(AsReceived(installed), notes);
  }
  TellNotes(notes);
  std::vector<Outcome> outcomes;
  for (const auto& installed : options.installed) {
    outcomes.push_back(Simulate(*script, installed, options.probe, trust));
  }
  if (options.all) outcomes = SimulateAll(*script, options.probe, trust);
  if (!options.site.empty())
    CompareWithSite(*script, Site(PathOf(options.site), *script), outcomes);
  const Offer offer = SimulateOffer(*script, options.probe, trust);
  const Form form = options.asJson ? Form::Json : options.inShort ? Form::Summary : Form::Text;
  ReportOutcomes(*script, offer, outcomes, options.probe, form);
  const bool goesWrong = std::any_of(outcomes.begin(), outcomes.end(), GoesWrong);
  return goesWrong || !offer.failure.empty() ? Failed : 0;
}

int RunMake(const Order& order, bool asJson, const std::vector<std::string>& keys) {
  Problems problems;
  const auto loaded =
      LoadPrivateKeys(keys, {order.site, order.oldFolder, order.newFolder}, problems);
  Made made;
  if (problems.empty()) made = MakeSigned(order, loaded);
  problems.insert(problems.end(), made.problems.begin(), made.problems.end());
  if (!problems.empty()) {
    ReportProblems(problems, asJson);
    return Failed;
  }
  const std::string name = Utf8Of(order.site / ScriptName);
  const Script script = CutWithNumbers(made.script);
  const Examination examination =
      order.isTrial ? Check(script, {order.to, ""})
                    : CheckAsPublished(script, order.to, "", {order.site, std::nullopt}, false);
  if (!asJson && !order.isTrial) TellKeys(name, loaded);
  ReportMade(order, made, name, examination, asJson);
  return StatusOf(examination.findings);
}

int RunKey(const KeyOptions& options) {
  Problems problems;
  const std::string key = MakeKeyFiles(PathOf(options.file), problems);
  if (!problems.empty()) {
    ReportProblems(problems, false);
    return Failed;
  }
  const std::string slash = options.url.ends_with('/') ? "" : "/";
  const std::string url = options.url.empty() ? "URL" : options.url + slash + ScriptName;
  std::cout << options.file
            << " is the private key. Whoever has it can sign updates: keep it, and a copy, where "
            << "nobody else reads it.\n"
            << options.file << PublicKeySuffix << " is the public key.\n"
            << "Your application names the key behind the URL of the script, its third argument:\n"
            << "  " << url << "#key=" << key << "\n";
  return 0;
}

int RunSign(const SignOptions& options) {
  const auto path = PathOf(options.script);
  Problems problems;
  if (IsUrl(options.script)) {
    ReportProblems({options.script + " is a URL: sign the file that is to be uploaded there."},
                   options.asJson);
    return Failed;
  }
  const auto keys = LoadPrivateKeys(options.keys, {SiteOf(options.script)}, problems);
  const Digests known = DigestsSignedBy(keys, path);
  const Problems notes = NotesOnLostKeys(ReadFile(path).value_or(""), keys);
  if (problems.empty()) SignFile(path, {keys, PathOf(options.updater), known}, problems);
  if (!problems.empty()) {
    ReportProblems(problems, options.asJson);
    return Failed;
  }
  TellNotes(notes);
  if (keys.empty()) {
    if (!options.asJson) std::cout << options.script << " has its digests, and no signature yet.\n";
    return 0;
  }
  if (!options.asJson) TellKeys(options.script, keys);
  return RunCheck({options.script, "", options.updater, options.asJson});
}

}  // namespace publish
