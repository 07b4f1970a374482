#include "publish/report.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>

#include "base/arrays.h"
#include "base/text.h"
#include "platform/console.h"
#include "publish/source.h"
#include "publish/versions.h"
#include "publish/words.h"
#include "run/messages.h"

namespace publish {
namespace {

using Json = nlohmann::ordered_json;

struct SeverityLook {
  const char* word;
  const char* colour;
};
constexpr SeverityLook Looks[] = {{"error", "\033[31m"}, {"warning", "\033[33m"}};

const SeverityLook& LookOf(Severity severity) { return Looks[static_cast<std::size_t>(severity)]; }

std::string Coloured(const std::string& text, const char* colour) {
  static const char* const unwanted = std::getenv("NO_COLOR");
  static const bool inColour = platform::console::IsTerminal(platform::console::Stream::Output) &&
                               (unwanted == nullptr || *unwanted == '\0');
  return inColour ? colour + text + "\033[0m" : text;
}

std::size_t Count(const Findings& findings, Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(findings.begin(), findings.end(),
                    [&](const Finding& finding) { return finding.severity == severity; }));
}

Json AsJson(const Finding& finding) {
  return {{"severity", LookOf(finding.severity).word},
          {"line", finding.line},
          {"text", modFunciones::ToUtf8(finding.text)}};
}

Json AsJson(const std::string& scriptName, const Examination& examination) {
  const auto& [verdict, findings] = examination;
  Json json = {{"script", scriptName},
               {"verdict", modFunciones::ToUtf8(verdict)},
               {"errors", Count(findings, Severity::Error)},
               {"warnings", Count(findings, Severity::Warning)},
               {"findings", Json::array()}};
  for (const auto& finding : findings) json["findings"].push_back(AsJson(finding));
  return json;
}

Json AsJson(const Order& order, const Made& made) {
  Json json = {{"written", !order.isTrial}, {"from", order.from},  {"to", order.to},
               {"changed", made.changed},   {"added", made.added}, {"removed", made.removed},
               {"bytes", made.bytes},       {"notes", made.notes}, {"block", Json::array()}};
  for (const auto& line : made.block) json["block"].push_back(modFunciones::ToUtf8(line));
  return json;
}

void Print(const Json& json) { std::cout << json.dump(2) << "\n"; }

/// A finding, with the other lines that it was found in.
struct Group {
  const Finding* first;
  std::vector<std::string> others;
};

std::vector<Group> Grouped(const Findings& findings) {
  std::vector<Group> groups;
  std::map<std::pair<Severity, std::string_view>, std::size_t> known;
  for (const auto& finding : findings) {
    const auto [at, isNew] =
        known.insert({{finding.severity, std::string_view(finding.text)}, groups.size()});
    if (isNew) {
      groups.push_back({&finding, {}});
    } else {
      groups[at->second].others.push_back(std::to_string(finding.line));
    }
  }
  return groups;
}

void PrintExamination(const std::string& scriptName, const Examination& examination) {
  constexpr std::size_t Most = 100;
  const auto& [verdict, findings] = examination;
  const auto groups = Grouped(findings);
  for (std::size_t i = 0; i < std::min(groups.size(), Most); ++i) {
    const auto& [severity, line, text] = *groups[i].first;
    const auto& look = LookOf(severity);
    const auto& others = groups[i].others;
    std::cout << scriptName << ":" << (line > 0 ? std::to_string(line) + ":" : "") << " "
              << Coloured(look.word, look.colour) << ": " << modFunciones::ToUtf8(text);
    if (!others.empty()) {
      std::cout << " (also in line" << (others.size() > 1 ? "s " : " ") << Some(others) << ")";
    }
    std::cout << "\n";
  }
  if (groups.size() > Most) std::cout << "and " << groups.size() - Most << " more findings\n";
  std::cout << scriptName << ": " << Number(Count(findings, Severity::Error), "error") << ", "
            << Number(Count(findings, Severity::Warning), "warning") << "; the updater "
            << (verdict.empty() ? "understands it" : "refuses it, and says:") << "\n";
  if (!verdict.empty()) std::cout << "  " << modFunciones::ToUtf8(verdict) << "\n";
}

void PrintMade(const Order& order, const Made& made) {
  std::cout << "From " << order.from << " to " << order.to << ": " << Number(made.changed, "file")
            << " changed, " << made.added << " new, " << made.removed << " gone. A user downloads "
            << Number(made.bytes, "byte") << ".\n";
  if (made.bytes > 0) {
    std::cout << "A file with one changed byte is downloaded whole; the largest of these is "
              << made.largest << ", " << Number(made.largestBytes, "byte") << ".\n";
  }
  for (const auto& note : made.notes)
    std::cout << Coloured("note", "\033[36m") << ": " << note << "\n";
  if (order.isTrial) {
    for (const auto& line : made.block) std::cout << "  " << modFunciones::ToUtf8(line) << "\n";
    std::cout << "Nothing was written; without --dry-run these lines would be.\n";
  } else {
    std::cout << "Upload what is in " << Utf8Of(order.site) << ": the folders first, " << ScriptName
              << " last.\n";
  }
}

std::string InstalledText(const Outcome& outcome) {
  if (outcome.first.empty()) return "no valid version";
  if (outcome.first == outcome.last) return outcome.first;
  if (outcome.last == LatestVersion) return outcome.first + " and later";
  return outcome.first + " to " + outcome.last;
}

/// What is said of actions that are not done, by their fate.
constexpr struct {
  const char* key;
  const char* text;
} FateWords[] = {{"", ""},
                 {"missing", "not available"},
                 {"fails", "fails"},
                 {"notGenuine", "not genuine"},
                 {"notStarted", "not started: neither WAIT nor NOWAIT"}};

/// The marker stands apart, so that the command word is always found in the same place.
Json AsJson(const TakenAction& action, const Script& script, bool probed) {
  const Fields& line = script.lines[action.line];
  Json arguments = Json::array();
  for (std::size_t i = 1; i < line.size(); ++i) {
    arguments.push_back(modFunciones::ToUtf8(line[i]));
  }
  Json json = {{"line", script.numbers[action.line]},
               {"immediate", action.immediate},
               {"command", modFunciones::ToUtf8(modPrincipal::CommandWord(line))},
               {"arguments", arguments}};
  if (probed) json["bytes"] = action.size;
  if (action.published) json["bytesInTheUploadFolder"] = *action.published;
  if (action.fate != Fate::Done) json[FateWords[static_cast<std::size_t>(action.fate)].key] = true;
  return json;
}

Json AsJson(const Offer& offer, bool probed) {
  if (offer.version.empty()) return nullptr;
  Json json = {{"version", modFunciones::ToUtf8(offer.version)},
               {"url", modFunciones::ToUtf8(offer.url)}};
  if (probed) json["bytes"] = offer.bytes;
  if (!offer.failure.empty()) json["failure"] = modFunciones::ToUtf8(offer.failure);
  return json;
}

Json AsJson(const Script& script, const Outcome& outcome, bool probed) {
  Json actions = Json::array();
  for (const auto& action : outcome.reading.actions) {
    actions.push_back(AsJson(action, script, probed));
  }
  Json json = {{"from", modFunciones::ToUtf8(outcome.first)},
               {"to", modFunciones::ToUtf8(outcome.last)},
               {"name", modFunciones::ToUtf8(outcome.reading.name)},
               {"refused", !outcome.reading.failure.empty()},
               {"actions", actions},
               {"finalScreen", modFunciones::ToUtf8(outcome.finalScreen)}};
  if (probed) json["bytes"] = outcome.bytes;
  return json;
}

void PrintAction(const TakenAction& action, const Script& script, bool probed) {
  const std::string number = std::to_string(script.numbers[action.line]);
  std::cout << "  line " << std::string(number.size() < 4 ? 4 - number.size() : 0, ' ') << number
            << (action.immediate ? "  at once  " : "           ");
  Fields shown = script.lines[action.line];
  shown[0] = modPrincipal::CommandWord(shown);
  std::cout << modFunciones::ToUtf8(modFunciones::Join(shown, "  "));
  const bool isFile = action.command->IsDownload();
  if (action.fate != Fate::Done) {
    std::cout << "  (" << FateWords[static_cast<std::size_t>(action.fate)].text << ")";
  } else if (probed && isFile) {
    std::cout << "  (" << Number(static_cast<std::uint64_t>(action.size), "byte") << ")";
  }
  if (action.published) {
    std::cout << "  (but " << Number(*action.published, "byte") << " in the upload folder)";
  }
  std::cout << "\n";
}

void PrintOffer(const Offer& offer, bool probed) {
  if (offer.version.empty()) return;
  std::cout << "An updater older than " << modFunciones::ToUtf8(offer.version)
            << " first replaces itself from " << modFunciones::ToUtf8(offer.url);
  if (!offer.failure.empty()) {
    const bool isRefused = offer.failure == modPrincipal::NotGenuine;
    std::cout << (isRefused ? "  (not genuine)" : "  (not available)")
              << "\n  final screen: " << modFunciones::ToUtf8(offer.failure);
  } else if (probed) {
    std::cout << "  (" << Number(static_cast<std::uint64_t>(offer.bytes), "byte") << ")";
  }
  std::cout << "\n\n";
}

std::string FinalScreenAndHint(const Outcome& outcome) {
  const bool isUnclear = outcome.finalScreen == modPrincipal::ScriptNotUnderstood;
  return modFunciones::ToUtf8(outcome.finalScreen) + (isUnclear ? "  (check tells why)" : "");
}

void PrintOutcome(const Script& script, const Outcome& outcome, bool probed) {
  std::cout << Coloured("Installed: " + modFunciones::ToUtf8(InstalledText(outcome)), "\033[1m")
            << "\n";
  const bool isUpdate =
      outcome.reading.failure.empty() && outcome.finalScreen != modPrincipal::NothingToDo;
  if (isUpdate)
    std::cout << "  in the window: " << modFunciones::ToUtf8(outcome.reading.name) << "\n";
  for (const auto& action : outcome.reading.actions) {
    PrintAction(action, script, probed);
  }
  if (probed && isUpdate)
    std::cout << "  in all " << Number(static_cast<std::uint64_t>(outcome.bytes), "byte") << "\n";
  std::cout << "  final screen: " << FinalScreenAndHint(outcome) << "\n\n";
}

void PrintInShort(const Script& script, const Outcome& outcome, bool probed) {
  std::cout << modFunciones::ToUtf8(InstalledText(outcome)) << ": "
            << Number(outcome.reading.actions.size(), "action");
  if (probed) std::cout << ", " << Number(static_cast<std::uint64_t>(outcome.bytes), "byte");
  std::cout << "\n  " << FinalScreenAndHint(outcome) << "\n";
  for (const auto& action : outcome.reading.actions) {
    if (action.fate != Fate::Done || action.published) PrintAction(action, script, probed);
  }
}

}  // namespace

void ReportFindings(const std::string& scriptName, const Examination& examination, bool asJson) {
  if (asJson) {
    Print(AsJson(scriptName, examination));
  } else {
    PrintExamination(scriptName, examination);
  }
}

void ReportProblems(const std::vector<std::string>& problems, bool asJson) {
  if (asJson) return Print({{"problems", problems}});
  for (const auto& problem : problems) std::cerr << problem << "\n";
}

void ReportMade(const Order& order, const Made& made, const std::string& scriptName,
                const Examination& examination, bool asJson) {
  if (asJson) {
    Json json = AsJson(scriptName, examination);
    json["made"] = AsJson(order, made);
    return Print(json);
  }
  PrintMade(order, made);
  PrintExamination(scriptName, examination);
}

void ReportOutcomes(const Script& script, const Offer& offer, const std::vector<Outcome>& outcomes,
                    bool probed, Form form) {
  if (form == Form::Json) {
    Json json = {{"updater", AsJson(offer, probed)}, {"installed", Json::array()}};
    for (const auto& outcome : outcomes) {
      json["installed"].push_back(AsJson(script, outcome, probed));
    }
    return Print(json);
  }
  PrintOffer(offer, probed);
  for (const auto& outcome : outcomes) {
    if (form == Form::Summary) {
      PrintInShort(script, outcome, probed);
    } else {
      PrintOutcome(script, outcome, probed);
    }
  }
}

int StatusOf(const Findings& findings) {
  if (Count(findings, Severity::Error) > 0) return Failed;
  return findings.empty() ? 0 : 1;
}

}  // namespace publish
