// What the tool for publishers tells of scripts, and the updates that it makes.

#include <gtest/gtest.h>

#include "publish/check.h"
#include "publish/encoding.h"
#include "publish/make.h"
#include "publish/simulate.h"
#include "publish/source.h"
#include "publish/vocabulary.h"
#include "run/command_line.h"
#include "run/messages.h"
#include "tests/support/loopback_server.h"
#include "tests/support/sandbox.h"

namespace {

using namespace publish;
using ::Shown;
using Texts = std::vector<std::string>;

const std::string header = "1.0.3|https://u/Kestrane.exe\nNAME|Ledger\n";
const std::string url = "|https://u/f";

/// Each finding as "E3 its text" or "W3 its text".
Texts FindingsOf(const std::string& script, const Knowledge& knowledge = {}) {
  Texts texts;
  for (const auto& [severity, line, text] : Check(CutWithNumbers(script), knowledge)) {
    texts.push_back((severity == Severity::Error ? "E" : "W") + std::to_string(line) + " " + text);
  }
  return texts;
}

/// Whether there are exactly these findings, of each of which a part is given behind its head.
void ExpectFindings(const std::string& script, const Texts& expected, const Texts& found) {
  SCOPED_TRACE(script);
  ASSERT_EQ(found.size(), expected.size()) << testing::PrintToString(found);
  for (std::size_t i = 0; i < found.size(); ++i) {
    const std::string head = expected[i].substr(0, expected[i].find(' ') + 1);
    EXPECT_TRUE(found[i].starts_with(head)) << found[i];
    EXPECT_NE(found[i].find(expected[i].substr(head.size())), std::string::npos) << found[i];
  }
}

TEST(Check, TellsWhatIsWrongWithAScript) {
  const struct {
    std::string script;
    Texts expected;
  } cases[] = {
      {"\xEF\xBB\xBF" + header + "END\nEND", {"E1 byte-order mark"}},
      {header + "#\n\nEND", {"E0 has 3 lines"}},
      {"1.0.3|https://u|\nEND\nEND\nEND", {"E1 exactly two fields"}},
      {"one|https://u\nEND\nEND\nEND", {"E1 no version"}},
      {"1.0.3|\nEND\nEND\nEND", {"E1 no URL"}},
      {"1.0.3|ftp://u/x\nEND\nEND\nEND", {"E1 no URL that the updater can use"}},
      {"1.0.3|https://u:99999/x\nEND\nEND\nEND", {"E1 at most 32767"}},
      {"1.0.3|HTTP://u/x\nEND\nEND\nEND", {"W1 plain http"}},
      {"1.0.3|http://127.0.0.1:80/x\nEND\nEND\nEND", {}},
  };
  for (const auto& [script, expected] : cases) {
    ExpectFindings(script, expected, FindingsOf(script));
  }
}

TEST(Check, TellsWhatIsWrongWithALine) {
  const struct {
    std::string lines;  // in a block for old versions; the first one is line 5
    Texts expected;
  } cases[] = {
      {"#\n\nSLEEP|1", {}},
      {"NAME||", {"E5 no name"}},
      {"VERSION|=|2|", {"E5 exactly three fields"}},
      {"VERSION| <|2", {"E5 spaces around the comparator"}},
      {"VERSION|=<|2", {"E5 no comparator"}},
      {"VERSION|=|2.x", {"E5 no version such as"}},
      {"EXECUTE|x|WAIT", {"E5 needs 4 fields, EXECUTE|command|WAIT|window, but has 3"}},
      {"UPDAT|$AppPath\\a" + url, {"E5 \"UPDAT\" is no command (UPDATE is the nearest)"}},
      {"ADD |$AppPath\\a" + url, {"E5 spaces around the command ADD"}},
      {" \t\nSLEEP|1", {"E5 nothing but blanks"}},
      {" #remark", {"E5 first column"}},
      {"!!KILL|ledger.exe", {"E5 no command"}},
      {"!END", {"W5 \"!\" has no effect on END"}},
      {"!DELETE|$AppPath\\a", {"E5 $AppPath is not replaced"}},
      {"DELETE|$apppath\\a", {"E5 $AppPath is written in other letter case"}},
      {"DELETE|$WinPath\\$WinSysPath\\$AppPath", {}},
      {"MSG|x|INFO", {"W5 \"INFO\" is no icon"}},
      {"EXECUTE|x.exe|SOON|normalfocus", {"E5 the program is not started"}},
      {"EXECUTE|x.exe|nowait|BIG", {"W5 \"BIG\" is no window"}},
      {"SLEEP|1.5", {"W5 no number of milliseconds"}},
      {"ADD|$AppPath\\a|", {"E5 names no URL"}},
      {"ADD|$AppPath\\a|http://u:x/", {"E5 no URL", "W5 plain http"}},
      {"DELETE|a/b", {"W5 backslash"}},
      {"DELETE|a\\b", {"W5 no macro and no drive"}},
      {"DELETE|$AppPath\\a ", {"W5 blanks around an argument"}},
      {"MSG|a\xC3\xB1o|NOTHING", {"W5 in UTF-8"}},
      {"MSG|a\xF1o|NOTHING", {}},
      {"MSG|a\x81o|NOTHING", {"W5 no character of Windows-1252"}},
      {"KILL|e.exe", {"E5 the updater too"}},
      {"KILL|Explorer.exe", {"E5 explorer.exe too"}},
      {"KILL|le.exe", {"W5 the name is short"}},
      {"KILL|ledger", {"W5 ends nothing"}},
      {"KILL|", {"W5 ends nothing"}},
  };
  for (const auto& [lines, expected] : cases) {
    const std::string script = header + "VERSION|<|3.2.0\nSLEEP|1\n" + lines;
    ExpectFindings(script, expected, FindingsOf(script));
  }
}

TEST(Check, TellsWhatLinesDoTogether) {
  const std::string exe = "UPDATE|$AppPath\\Ledger.exe" + url;
  const struct {
    std::string lines;  // the first one is line 3
    Texts expected;
    Knowledge knowledge = {};
  } cases[] = {
      {"SLEEP|1\nVERSION|<|2\nSLEEP|1\nEND", {"W3 before the first VERSION line"}},
      {"VERSION|<|2\nSLEEP|1\nEND\nVERSION|<|2\nSLEEP|1\nSLEEP|2\nEND",
       {"W7 No installed version"}},
      {"VERSION|<|2\nSLEEP|1\nVERSION|<|2\nSLEEP|1\nSLEEP|2\nEND", {}},
      {"VERSION|<|2\nSLEEP|1\nX\nSLEEP|1\nVERSION|<|3\nSLEEP|1", {"E5 is no command"}},
      {"VERSION|>=|2\nSLEEP|1", {"E3 every later version"}},
      {"VERSION|<=|2\nSLEEP|1", {"W3 holds for 2 itself"}},
      {"VERSION|<=|2\nSLEEP|1", {}, {"2.0.1", ""}},
      {"VERSION|<|3\nSLEEP|1", {"E3 newest release"}, {"2.9.9", ""}},
      {"VERSION|=|2\nSLEEP|1\nEND", {}},
      {"VERSION|=|2\nADD|$AppPath\\a" + url + "\nVERSION|<|3\nUPDATE|$AppPath\\A" + url,
       {"E6 that of line 4"}},
      {"VERSION|=|2\nADD|$AppPath\\a" + url + "\nEND\nVERSION|<|3\nUPDATE|$AppPath\\A" + url, {}},
      {"VERSION|=|2\n" + exe + "\nKILL|ledger.exe", {"W4 No KILL precedes that ends ledger.exe"}},
      {"VERSION|=|2\nKILL|Ledger.EXE\n" + exe, {}},
      {"VERSION|=|2\n" + exe + "\n!KILL|ledger.exe", {}},
      {"VERSION|=|2\nADD|$AppPath\\Kestrane.exe" + url, {"E4 cannot replace itself"}},
  };
  for (const auto& [lines, expected, knowledge] : cases) {
    ExpectFindings(lines, expected, FindingsOf(header + lines, knowledge));
  }

  using namespace std::string_literals;
  const auto record = [](const char* revision) {
    return "MZ\xBD\x04\xEF\xFE\0\0\1\0\0\0\1\0\0\0"s + revision + "\0"s;
  };
  const std::string script = header + "END\nEND";
  ExpectFindings("newer file", {"W1 will not get it"}, FindingsOf(script, {"", record("\4")}));
  ExpectFindings("older file", {"E1 again and again"}, FindingsOf(script, {"", record("\2")}));
  ExpectFindings("same", {}, FindingsOf(script, {"", record("\3")}));
}

TEST(Check, ExplainsWhatTheParserDecides) {
  for (const std::string word : {"NAME", "VERSION", "ADD", "UPDATE", "DELETE", "MSG", "EXECUTE",
                                 "KILL", "REGISTER", "UNREGISTER", "SLEEP", "END"}) {
    const Command* const command = FindCommand(word);
    ASSERT_NE(command, nullptr);
    Fields line = {word, "=", "1", "x"};
    line.resize(command->leastFields);
    EXPECT_FALSE(IsRefused(line, false)) << word;
    line.pop_back();
    EXPECT_TRUE(word == "END" || IsRefused(line, false)) << word;

    const Reading reading =
        ReadFor(CutWithNumbers(header + "VERSION|=|2\n!" + word + "|=|1|x"), "2", false);
    ASSERT_EQ(reading.actions.size(), command->isAction ? 1U : 0U) << word;
    if (command->isAction) {
      EXPECT_EQ(reading.actions[0].immediate, command->markerWorks) << word;
    }
  }
}

TEST(Simulate, TellsWhatEachInstallationMeets) {
  LoopbackServer server;
  server.Serve("/a", {.body = "12345"});
  server.Serve("/b", {.body = "678"});
  const Script script = CutWithNumbers(
      header + "VERSION|=|1.0.0\n!KILL|x.exe\nADD|$AppPath\\gone|" + server.Url("/gone") +
      "\nEND\nVERSION|<|2.0.0\nADD|$AppPath\\a|" + server.Url("/a") +
      "\n!MSG|x|NOTHING\nUPDATE|b|" + server.Url("/b") + "\nEND\nVERSION|=|2.0.0\n!SLEEP|1\nEND");
  const struct {
    std::string first, last;
    std::string actions;  // line, "!" when immediate, bytes
    std::string_view finalScreen;
    std::int64_t bytes;
  } expected[] = {
      {"", "", "8:5 9! 10:3 ", modPrincipal::Success, 8},
      {"0.0.0", "0.999.999", "8:5 9! 10:3 ", modPrincipal::Success, 8},
      {"1.0.0", "1.0.0", "4! 5:0 ", modPrincipal::FilesNotAvailable, 0},
      {"1.0.1", "1.999.999", "8:5 9! 10:3 ", modPrincipal::Success, 8},
      {"2.0.0", "2.0.0", "13! ", modPrincipal::NothingToDo, 0},
      {"2.0.1", "999.999.999", "", modPrincipal::NothingToDo, 0},
  };
  const auto outcomes = SimulateAll(script, true);
  ASSERT_EQ(outcomes.size(), std::size(expected));
  for (std::size_t i = 0; i < outcomes.size(); ++i) {
    const Outcome& outcome = outcomes[i];
    std::string actions;
    for (const auto& [line, immediate, size] : outcome.reading.actions) {
      actions += std::to_string(script.lines[line].number) +
                 (immediate ? "! " : ":" + std::to_string(size) + " ");
    }
    EXPECT_EQ(outcome.first + "-" + outcome.last, expected[i].first + "-" + expected[i].last);
    EXPECT_EQ(actions, expected[i].actions) << outcome.first;
    EXPECT_EQ(outcome.finalScreen, expected[i].finalScreen) << outcome.first;
    EXPECT_EQ(outcome.bytes, expected[i].bytes) << outcome.first;
  }
  (void)server.TakeRequests();
  (void)Simulate(script, "1.5.0", true);
  EXPECT_EQ(server.TakeRequests(), (Texts{"HEAD /a HTTP/1.0", "HEAD /a HTTP/1.0",
                                          "HEAD /b HTTP/1.0", "HEAD /b HTTP/1.0"}));
  (void)Simulate(script, "1.5.0", false);
  EXPECT_EQ(server.TakeRequests(), Texts{});

  server.Serve("/s", {.body = "text"});
  EXPECT_EQ(Fetch(server.Url("/s")), "text");
  EXPECT_EQ(Fetch(server.Url("/gone")), std::nullopt);
}

class Making : public testing::Test {
 protected:
  void SetUp() override {
    order.oldFolder = sandbox.Folder("old");
    order.newFolder = sandbox.Folder("new");
    order.site = sandbox.Folder("site");
    order.url = "https://u/l";
    order.from = "1.0.0";
    order.to = "2.0.0";
    order.updaterUrl = "https://u/k";
    order.updaterVersion = "1.0.3";
  }

  Sandbox sandbox;
  Order order;
};

TEST_F(Making, WritesBlocksThatTurnOneFolderIntoTheOther) {
  sandbox.Fill({{"old/app.exe", "1"}, {"old/same", "="}, {"old/gone.dll", "1"}, {"old/ini", "1"}});
  sandbox.Fill(
      {{"new/App.exe", "2"}, {"new/same", "="}, {"new/d e/f#.ocx", "2"}, {"new/ini", "2"}});
  sandbox.Write("new/KESTRANE.exe", "the updater is no file of the application");
  sandbox.Write("site/update.txt",
                "# kept\r\n1.0.2|x\nNAME|Old\nVERSION|=|0.9.0\n# kept\nSLEEP|1\nEND\n"
                "VERSION|=|1.0.0\nSLEEP|1\nEND\nVERSION|<|2.0.0\nSLEEP|1\nEND\n");
  order.name = "Ledger";
  order.coversOlder = true;
  order.wishes = {"", {"INI"}, {"gone.dll", "D E\\f#.ocx"}, {"SLEEP|5"}};
  EXPECT_EQ(Make(order), Texts{});
  const std::string put = "ADD|$AppPath\\d e\\f#.ocx|https://u/l/2.0.0/d%20e/f%23.ocx\n";
  const std::string ini = "ADD|$AppPath\\ini|https://u/l/2.0.0/ini\n";
  EXPECT_EQ(sandbox.Read("site/update.txt"),
            "# kept\n1.0.3|https://u/k\nNAME|Ledger\nVERSION|=|0.9.0\n# kept\nSLEEP|1\nEND\n"
            "VERSION|=|1.0.0\nKILL|app.exe\nUNREGISTER|$AppPath\\gone.dll\n"
            "UPDATE|$AppPath\\App.exe|https://u/l/2.0.0/App.exe\n" +
                ini + put +
                "DELETE|$AppPath\\gone.dll\nREGISTER|$AppPath\\d e\\f#.ocx\nSLEEP|5\nEND\n"
                "VERSION|<|2.0.0\nKILL|app.exe\nADD|$AppPath\\App.exe|https://u/l/2.0.0/App.exe\n" +
                put + ini +
                "ADD|$AppPath\\same|https://u/l/2.0.0/same\n"
                "REGISTER|$AppPath\\d e\\f#.ocx\nSLEEP|5\nEND\n");
  EXPECT_EQ(sandbox.Read("site/2.0.0/d e/f#.ocx"), "2");
  EXPECT_EQ(FindingsOf(sandbox.Read("site/update.txt"), {order.to, ""}), Texts{});

  order.from = "2.0.0";
  order.to = "3.0.0";
  order.coversOlder = false;
  EXPECT_EQ(Make(order), Texts{});
  const std::string third = sandbox.Read("site/update.txt");
  EXPECT_GT(third.find("VERSION|=|2.0.0"), third.find("VERSION|<|2.0.0")) << "newest last";
  const Script ladder = CutWithNumbers(third);
  for (const char* installed : {"0.9.0", "1.0.0", "1.5.0", "2.0.0"}) {
    EXPECT_FALSE(ReadFor(ladder, installed, false).actions.empty()) << installed;
  }
  EXPECT_TRUE(ReadFor(ladder, "3.0.0", false).actions.empty());
}

TEST_F(Making, RefusesWhatTheUpdaterCannotDo) {
  const std::map<std::string, std::string> base = {{"old/a", "1"}, {"new/a", "2"}};
  const struct {
    std::string problem;
    std::map<std::string, std::string> files;
    std::function<void(Order&)> change = [](Order&) {};
  } cases[] = {
      {"no version", {}, [](Order& o) { o.from = "x"; }},
      {"does not come after", {}, [](Order& o) { o.to = "0.9.0"; }},
      {"no http or https URL", {}, [](Order& o) { o.url = "u"; }},
      {"is no folder", {}, [](Order& o) { o.newFolder /= "gone"; }},
      {"folders are alike", {{"new/a", "1"}}},
      {"new files are empty", {{"new/a", ""}}},
      {"write over a.tmp", {{"old/a.tmp", "x"}, {"new/a.tmp", "x"}}},
      {"write over a.bak", {{"new/a.bak", "x"}}, [](Order& o) { o.wishes.backups = {"a"}; }},
      {"a file in one version and a folder", {{"old/b", "x"}, {"new/b/c", "x"}}},
      {"a file in one version and a folder", {{"old/b/c", "x"}, {"new/b", "x"}}},
      {"Windows-1252 lacks", {}, [](Order& o) { std::ofstream(o.newFolder / u8"\u4E2D") << "x"; }},
      {"macro", {{"new/$AppPath", "x"}}},
      {"no file b", {}, [](Order& o) { o.wishes.components = {"b"}; }},
      {"needs the updater's version", {}, [](Order& o) { o.updaterUrl = ""; }},
  };
  for (const auto& [problem, files, change] : cases) {
    SCOPED_TRACE(problem);
    for (const char* folder : {"old", "new"}) std::filesystem::remove_all(sandbox.Folder(folder));
    sandbox.Fill(base);
    sandbox.Fill(files);
    Order changed = order;
    change(changed);
    const Texts problems = Make(changed);
    ASSERT_EQ(problems.size(), 1U) << testing::PrintToString(problems);
    EXPECT_NE(problems[0].find(problem), std::string::npos) << problems[0];
    EXPECT_FALSE(sandbox.Has("site"));
  }
}

TEST(Guide, TellsHowArgumentsAreCut) {
  std::ifstream page(GUIDE_FOLDER "/integration.md");
  int rows = 0;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("| `\"")) continue;
    const auto end = line.find("` | `");
    std::string cut;
    for (const auto& argument : modFunciones::SplitArguments("", line.substr(3, end - 3))) {
      if (!argument.empty()) cut += (cut.empty() ? "`" : " and `") + argument + "`";
    }
    EXPECT_EQ(line.substr(end + 4, line.rfind(" |") - end - 4), cut);
    ++rows;
  }
  EXPECT_GT(rows, 0);
}

TEST(Encoding, GoesBothWays) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(FromUtf8(ToUtf8(all)), all);
  EXPECT_EQ(ToUtf8("\x80\xF1"), "\xE2\x82\xAC\xC3\xB1");
  for (const char* text : {"\xE4\xB8\xAD", "\xC3", "\xC3x", "\xF1o", "\xF0\x9F\x98\x80"}) {
    EXPECT_EQ(FromUtf8(text), std::nullopt) << text;
  }
}

}  // namespace
