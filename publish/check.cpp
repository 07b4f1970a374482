#include "publish/check.h"

#include <algorithm>
#include <tuple>

#include "publish/reading.h"
#include "publish/site.h"
#include "publish/source.h"
#include "publish/versions.h"
#include "run/messages.h"
#include "script/version.h"

namespace publish {
namespace {

constexpr std::string_view ByteOrderMarks[] = {Utf8Mark, "\xFF\xFE", "\xFE\xFF"};

/// Byte-order mark and number of lines; with findings, looking further makes no sense.
Findings CheckText(const Script& script) {
  for (const auto& mark : ByteOrderMarks) {
    if (script.text.starts_with(mark)) {
      return {{Severity::Error, 1,
               "The text begins with a byte-order mark, so that no installation understands it: "
               "save it as Windows-1252 (\"ANSI\")."}};
    }
  }
  if (script.text.find('\r') != std::string::npos && script.text.find('\n') == std::string::npos) {
    return {{Severity::Error, 1,
             "The lines end with carriage returns alone, which the updater drops, so that it reads "
             "one long line: save the text with the line ends of Windows."}};
  }
  if (script.lines.size() < modPrincipal::LeastLines) {
    return {{Severity::Error, 0,
             "The script needs at least four lines beside comments and blank ones, but has " +
                 std::to_string(script.lines.size()) + "."}};
  }
  return {};
}

/// The version of the header against the one that the updater's file tells of itself.
void CheckHeaderVersion(const Script& script, const std::string& updater, Findings& findings) {
  using modPrincipal::VersionToNumber;
  const std::string recorded = RecordedVersion(updater);
  const std::string stated = FieldAt(script.lines[0], 0);
  if (recorded.empty() || VersionToNumber(stated) == VersionToNumber(recorded)) return;
  const std::string both =
      "The header offers the updater " + stated + ", but the file is version " + recorded + ": ";
  if (VersionToNumber(stated) > VersionToNumber(recorded)) {
    findings.push_back({Severity::Error, script.numbers[0],
                        both + "every installation would replace its updater again and again."});
  } else {
    findings.push_back({Severity::Warning, script.numbers[0],
                        both + "installations that have " + stated + " will not get it."});
  }
}

/// Errors first, then by line, each finding once.
void Sort(Findings& findings) {
  const auto key = [](const Finding& finding) {
    return std::tie(finding.severity, finding.line, finding.text);
  };
  std::sort(findings.begin(), findings.end(),
            [&](const Finding& a, const Finding& b) { return key(a) < key(b); });
  const auto end =
      std::unique(findings.begin(), findings.end(),
                  [&](const Finding& a, const Finding& b) { return key(a) == key(b); });
  findings.erase(end, findings.end());
}

}  // namespace

Examination Check(const Script& script, const Knowledge& knowledge) {
  const auto versions = VersionsToldApart(script);
  const Reading reading = Read(script, versions);
  Examination examination = {reading.failure, CheckText(script)};
  Findings& findings = examination.findings;
  const bool isText = findings.empty();
  if (knowledge.origin) {
    if (!IsTaken(script, knowledge.origin->key)) {
      examination.verdict = modPrincipal::NotSigned;
    }
    CheckSigning(script, *knowledge.origin, knowledge.probe, findings);
  }
  if (!isText) return examination;
  CheckLines(script, findings);
  CheckFlow(script, versions, reading, knowledge.newest, findings);
  CheckHeaderVersion(script, knowledge.updater, findings);
  if (!knowledge.site.empty()) CheckSite(script, Site(knowledge.site, script), findings);
  Sort(findings);
  return examination;
}

}  // namespace publish
