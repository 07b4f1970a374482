#include "publish/versions.h"

#include <algorithm>
#include <cstddef>

#include "script/version.h"

namespace publish {
namespace {

// Version numbers have 8, 9 or 10 digits, of which the first is a 1.
constexpr std::int32_t Edges[] = {10'000'000,  19'999'999,    100'000'000,
                                  199'999'999, 1'000'000'000, 1'999'999'999};

std::string WithoutZeros(const std::string& part) {
  const auto digit = part.find_first_not_of('0');
  return digit == std::string::npos ? "0" : part.substr(digit);
}

/// Of the version that a line names; 0 when it names none.
std::int32_t NumberIn(const Script& script, std::size_t line) {
  const bool isVersion = script.Is(line, modPrincipal::Verb::Version);
  return isVersion ? modPrincipal::VersionToNumber(FieldAt(script.lines[line], 2)) : 0;
}

// VS_FIXEDFILEINFO of verrsrc.h: its signature, and where the parts of the version stand.
constexpr std::string_view Signature = "\xBD\x04\xEF\xFE";
constexpr std::size_t MinorAt = 8;
constexpr std::size_t MajorAt = 10;
constexpr std::size_t RevisionAt = 14;
constexpr std::size_t Size = 16;

std::string NumberAt(std::string_view record, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(record[i]); };
  return std::to_string(byte(at) + byte(at + 1) * 256);
}

}  // namespace

std::vector<std::int32_t> VersionsToldApart(const Script& script) {
  std::vector<std::int32_t> numbers(std::begin(Edges), std::end(Edges));
  for (std::size_t i = 0; i < script.lines.size(); ++i) {
    const std::int32_t number = NumberIn(script, i);
    if (number != 0) numbers.insert(numbers.end(), {number - 1, number, number + 1});
  }
  std::erase_if(numbers, [](std::int32_t number) { return VersionOf(number).empty(); });
  numbers.push_back(0);
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  return numbers;
}

std::string OddityOf(const std::string& version) {
  if (modPrincipal::VersionToNumber(version) == 0) {
    return "is no version such as 3.2.0: up to three numbers of at most three digits";
  }
  if (std::count(version.begin(), version.end(), '.') > 2) {
    return "has more than three parts, and the updater ignores those behind the third: say 3.1.42 "
           "for 3.1.4.2, for example";
  }
  if (version.starts_with('0') && version.size() > 1 && version[1] != '.') {
    return "begins with a needless 0, which makes it greater than 9.0.0: leave the 0 out";
  }
  for (auto at = version.find(".0"); at != std::string::npos; at = version.find(".0", at + 1)) {
    if (at + 2 == version.size() || version[at + 2] == '.') continue;
    return "has a needless 0: it is " + VersionOf(modPrincipal::VersionToNumber(version)) +
           ", and is to be written so";
  }
  return "";
}

void CheckVersion(const std::string& version, std::vector<std::string>& problems) {
  const std::string oddity = OddityOf(version);
  if (!oddity.empty()) problems.push_back("The version " + version + " " + oddity + ".");
}

std::string VersionOf(std::int32_t number) {
  const std::string digits = std::to_string(number);
  if (digits.size() < 8 || digits.front() != '1') return "";
  const auto minor = digits.size() - 6;
  return digits.substr(1, minor - 1) + "." + WithoutZeros(digits.substr(minor, 3)) + "." +
         WithoutZeros(digits.substr(minor + 3));
}

std::string GreatestNamed(const Script& script) {
  std::int32_t greatest = 0;
  std::string version;
  for (std::size_t i = 0; i < script.lines.size(); ++i) {
    const std::int32_t number = NumberIn(script, i);
    if (number <= greatest) continue;
    greatest = number;
    version = FieldAt(script.lines[i], 2);
  }
  return version;
}

std::string RecordedVersion(std::string_view program) {
  const auto at = program.find(Signature);
  if (at == std::string_view::npos || program.size() - at < Size) return "";
  const auto record = program.substr(at);
  return NumberAt(record, MajorAt) + "." + NumberAt(record, MinorAt) + "." +
         NumberAt(record, RevisionAt);
}

}  // namespace publish
