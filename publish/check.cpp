#include "publish/check.h"

#include <algorithm>
#include <tuple>

#include "publish/check_flow.h"
#include "publish/check_lines.h"
#include "publish/check_text.h"
#include "publish/reading.h"
#include "publish/version_range.h"

namespace publish {
namespace {

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

Findings Check(const Script& script, const Knowledge& knowledge) {
  Findings findings = CheckText(script);
  // Lines of a text in another encoding would be misread one by one.
  if (findings.empty()) {
    findings = CheckLines(script);
    const bool refused = !Verdict(script).empty();
    if (!refused) CheckFlow(script, knowledge.newest, findings);
    CheckHeaderVersion(script, knowledge.updater, findings);
  }
  Sort(findings);
  return findings;
}

std::string Verdict(const Script& script) {
  for (const auto& installed : VersionsToldApart(script)) {
    const Reading reading = ReadFor(script, installed, false);
    if (!reading.failure.empty()) return reading.failure;
  }
  return "";
}

}  // namespace publish
