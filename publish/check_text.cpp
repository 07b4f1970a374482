#include "publish/check_text.h"

#include "publish/version_record.h"
#include "script/version.h"

namespace publish {
namespace {

constexpr std::size_t LeastLines = 4;
constexpr std::string_view ByteOrderMarks[] = {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"};

}  // namespace

Findings CheckText(const Script& script) {
  for (const auto& mark : ByteOrderMarks) {
    if (script.text.starts_with(mark)) {
      return {{Severity::Error, 1,
               "The text begins with a byte-order mark, so that no installation understands it: "
               "save it as Windows-1252 (\"ANSI\")."}};
    }
  }
  if (script.lines.size() < LeastLines) {
    return {{Severity::Error, 0,
             "The script has " + std::to_string(script.lines.size()) +
                 " lines beside comments and blank ones, but needs at least four."}};
  }
  return {};
}

void CheckHeaderVersion(const Script& script, const std::string& updater, Findings& findings) {
  using modPrincipal::VersionToNumber;
  const std::string recorded = RecordedVersion(updater);
  const std::string stated = FieldAt(script.lines[0].fields, 0);
  if (recorded.empty() || VersionToNumber(stated) == VersionToNumber(recorded)) return;
  const std::string both =
      "The header offers the updater " + stated + ", but the file is version " + recorded + ": ";
  if (VersionToNumber(stated) > VersionToNumber(recorded)) {
    findings.push_back({Severity::Error, script.lines[0].number,
                        both + "every installation would replace its updater again and again."});
  } else {
    findings.push_back({Severity::Warning, script.lines[0].number,
                        both + "installations that have " + stated + " will not get it."});
  }
}

}  // namespace publish
