// Versions, cutting a script into lines, and the parser with the table that it fills.

#include <gtest/gtest.h>

#include "base/arrays.h"
#include "run/messages.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "script/commands.h"
#include "script/parser.h"
#include "script/version.h"
#include "tests/support/scripted_window.h"

namespace {

using namespace modPrincipal;
using Texts = std::vector<std::string>;

TEST(Version, BecomesTheNumberByWhichVersionsCompare) {
  const std::pair<std::int32_t, std::vector<std::string>> cases[] = {
      {11002003, {"1.2.3", "1.02.3", "1.2.3.x"}},
      {11002000, {"1.2"}},
      {11000003, {"1..3"}},
      {10000000, {"0.0.0"}},
      {101000000, {"01.0.0"}},
      {1999999999, {"999.999.999"}},
      {0, {"", ".1.2", "a.b.c", "1.2.3a", "-1.0.0", "+1.0.0", "1. 2.3"}},
      {0, {"1000.0.0", "1.1000.0", "1.0.0001", "99999999999999.1.1"}},
  };
  for (const auto& [number, texts] : cases) {
    for (const auto& text : texts) EXPECT_EQ(VersionToNumber(text), number) << text;
  }
}

TEST(Words, StandForTheNumbersOfTheSystem) {
  std::string all;
  for (const auto& command : Commands()) {
    for (const auto& argument : command.Arguments()) {
      for (const auto& [word, value] : argument.words) {
        all += std::string(word) + ' ' + std::to_string(value) + ' ';
      }
    }
  }
  EXPECT_EQ(all,
            "EXCLAMATION 48 INFORMATION 64 CRITICAL 16 NOTHING 0 WAIT 1 NOWAIT 0 HIDE 0 NORMAL 4 "
            "NORMALFOCUS 1 MIN 6 MINFOCUS 2 MAX 3 ");
}

/// Parses a script whose header and name are those of every sample, for an installed version.
class Parser : public testing::Test {
 protected:
  void SetUp() override {
    ResetActionTable();
    ResetScript();
    scripted_window::Reset();
    AppTitle = "Ledger";
  }

  static std::string Parse(const std::string& script, const std::string& installed = "2.0.0") {
    AppVersion = installed;
    ScriptLines = CutScript(script);
    return ParseUpdateScript(ScriptLines);
  }

  const std::string header = "1.4.2|http://u/\n";
};

TEST_F(Parser, FollowsTheCondition) {
  const struct {
    std::string lines;
    std::string recorded;  // the first arguments
    std::string installed = "2.0.0";
  } cases[] = {
      {"KILL|a\nKILL|b", ""},  // no VERSION line yet
      {"VERSION|>|1.9.9\nKILL|a\nVERSION|>|2.0.0\nKILL|b", "a"},
      {"VERSION|<|2.0.1\nKILL|a\nVERSION|<|2.0.0\nKILL|b", "a"},
      {"VERSION|>=|2.0.0\nKILL|a\nVERSION|>=|2.0.1\nKILL|b", "a"},
      {"VERSION|<=|2.0.0\nKILL|a\nVERSION|<=|1.9.9\nKILL|b", "a"},
      {"VERSION|=|2.0.0\nKILL|a\nVERSION|=|2.0.1\nKILL|b", "a"},
      {"VERSION|<|2.0.0\nKILL|a\nVERSION|>|0.0.1\nKILL|b", "a", "unknown"},
      {"VERSION|=|2\nKILL|a\n \nKILL|b\nVERSION|=|2\nKILL|c\nADD |x|y\nKILL|d", "ac"},
      {"VERSION|=|2\nKILL|a\n #\nKILL|b\nVERSION|=|2\nKILL|c\n|\nKILL|d", "ac"},
      {"VERSION|=|2\n!\nKILL|a\nVERSION|=|2\n!!KILL|x\nKILL|b", ""},
      {"VERSION|=|2\r\nKILL|a\r\n\r\nKILL|\rb", "ab"},
      {"END\nVERSION|=|2\nKILL|a\n!end|x\nADD\nMSG|malformed", "a"},
      {"!VERSION|=|2\n!NAME|x\nKILL|a\nNAME|y\nKILL|b", "ab"},
      {"!MSG|no|?\nVERSION|=|2\n!MSG|$AppPath|INFORMATION\nKILL|a\nVERSION|=|3\n!MSG|no|?", "a"},
  };
  for (const auto& [lines, recorded, installed] : cases) {
    ResetActionTable();
    EXPECT_EQ(Parse(header + "NAME|x\nNAME|Sample||x\n" + lines, installed), "") << lines;
    EXPECT_EQ(modFunciones::Join(ActionArg1, ""), recorded) << lines;
  }
  EXPECT_EQ(scripted_window::state.history, Texts{"box 64|Ledger|$AppPath"}) << "at once";
}

TEST_F(Parser, RejectsWhatItDoesNotUnderstand) {
  std::vector<std::string> scripts;
  for (const std::string first :
       {"1.4.2|http://u/|", "1.4.2", "one|http://u/", "\uFEFF1|u", "1.4.2|"}) {
    scripts.push_back(first + "\nEND\nEND\nEND");
  }
  for (const std::string line :
       {"NAME", "NAME||", "VERSION|=|2|", "VERSION|=", "VERSION| =|2", "VERSION|==|2",
        "VERSION|=|two", "ADD|x", "UPDATE|x", "DELETE", "MSG|x", "!EXECUTE|x|WAIT", "KILL",
        "REGISTER", "UNREGISTER", "SLEEP"}) {
    scripts.push_back(header + "END\nEND\n" + line);
  }
  for (const auto& script : scripts) EXPECT_EQ(Parse(script), ScriptNotUnderstood) << script;
  ResetScript();
  EXPECT_EQ(Parse(header + "NAME|x\n#a\n\nVERSION|=|2"), ScriptNotUnderstood) << "three lines";
  EXPECT_EQ(NewUpdaterVersion, 0) << "and their header is not looked at";
  EXPECT_EQ(Parse(header + "VERSION|=|2\nKILL|a\n!KILL\n!KILL|b"), ScriptNotUnderstood);
  EXPECT_EQ(ActionArg1, Texts{"a"}) << "what stood before the failing line stays";
}

}  // namespace
