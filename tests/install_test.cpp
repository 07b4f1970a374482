// File helpers, processes, components and the action executor.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "base/replace.h"
#include "install/action_executor.h"
#include "install/component_registration.h"
#include "install/file_helpers.h"
#include "install/process_control.h"
#include "platform/processes.h"
#include "platform/system.h"
#include "run/launch.h"
#include "run/messages.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "script/parser.h"
#include "tests/support/faults.h"
#include "tests/support/sandbox.h"
#include "tests/support/scripted_window.h"

namespace {

using namespace modPrincipal;
using namespace modFunciones;
using Texts = std::vector<std::string>;
using Tree = std::map<std::string, std::string>;

const std::string ownFolder = platform::system::ExecutableFolder();

class Install : public testing::Test {
 protected:
  void SetUp() override {
    scripted_window::Reset();
    AppTitle = "Ledger";
  }

  /// Carries out the actions of a script's lines, in which @ stands for the sandbox.
  std::string CarryOut(const std::string& lines) const {
    ResetActionTable();
    AppVersion = "1";
    ScriptLines =
        CutScript("1|url\nNAME|n\nVERSION|=|1\n" + ReplaceAll(lines, "@", sandbox.Path("")));
    EXPECT_EQ(ParseUpdateScript(ScriptLines), "");
    return RunActions();
  }

  /// Starts a helper that stays, and returns once it is up.
  platform::processes::Process StartHelper(const std::string& name) const {
    const std::string sign = sandbox.Path(name + ".up");
    sandbox.Write(name, FileReadAll(ownFolder + "\\helper.exe"));
    auto started =
        platform::processes::Start(QuoteProgram(sandbox.Path(name)) + " stay \"" + sign + "\"", 0);
    EXPECT_TRUE(Eventually([&] { return !FileReadAll(sign).empty(); }));
    return started;
  }

  Sandbox sandbox;
};

TEST_F(Install, FilesAreReadAndWrittenWhole) {
  for (const auto& content : Texts{std::string("longer\r\n\x1A\0\xFF", 11), "\xFF", ""}) {
    EXPECT_TRUE(FileWriteAll(sandbox.Path("f"), content));
    EXPECT_EQ(FileReadAll(sandbox.Path("f")), content);
  }
  EXPECT_EQ(FileReadAll(sandbox.Path("missing")), "");
  EXPECT_FALSE(FileWriteAll(sandbox.Path("no/folder"), "x"));
  sandbox.Write("f", "old");
  if (const auto lock = faults::Lock(sandbox.Path("f"))) {
    EXPECT_FALSE(FileWriteAll(sandbox.Path("f"), "new"));
    EXPECT_FALSE(FileRename(sandbox.Path("f"), sandbox.Path("g")));
    EXPECT_EQ(FileReadAll(sandbox.Path("f")), "");
  }
}

TEST_F(Install, WaitsForOtherProgramsToLetGoOfAFile) {
  const struct {
    std::string row;
    std::string held;
    bool shared;
    bool forGood;
    std::string left;
  } cases[] = {
      {"UPDATE", "a", false, false, "new"},     {"UPDATE", "a", true, false, "new"},
      {"UPDATE", "a.tmp", false, false, "new"}, {"ADD", "a", false, false, "new"},
      {"ADD", "a.tmp", false, false, "new"},    {"UPDATE", "a", true, true, "old"},
      {"UPDATE", "a.tmp", false, true, "old"},  {"ADD", "a.tmp", false, true, "old"},
  };
  for (const auto& [row, held, shared, forGood, left] : cases) {
    SCOPED_TRACE(row + " with " + held);
    sandbox.Fill({{"a", "old"}, {"a.tmp", "new"}, {"a.bak", "older"}});
    auto lock = faults::Lock(sandbox.Path(held), shared);
    if (!lock) GTEST_SKIP() << "no program stands in the way of another on this system";
    std::jthread other([&lock, stays = forGood] {
      if (stays) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
      lock.reset();
    });
    EXPECT_EQ(CarryOut(row + "|@a|"), forGood ? WriteFailure : "");
    other.join();
    lock.reset();
    EXPECT_EQ(sandbox.Read("a"), left);
    EXPECT_EQ(sandbox.Read("a.bak"), row == "ADD" && !forGood ? "old" : "older");
  }
}

TEST_F(Install, FilesAreFoundDeletedAndRenamed) {
  sandbox.Fill({{"one.txt", ""}, {"two.txt", ""}, {"three.dat", "3"}, {"dir.txt/x", ""}});
  sandbox.Fill({{"other.log", ""}, {".hidden.txt", ""}});
  const std::string hidden = faults::Hide(sandbox.Path(".hidden.txt"));
  EXPECT_TRUE(FileExists(sandbox.Path("one.txt")));
  EXPECT_TRUE(FileExists(sandbox.Path("t?o.*")));
  for (const auto& path : Texts{sandbox.Path("dir.txt"), sandbox.Path("missing"), hidden,
                                sandbox.Path(""), sandbox.Path("no/x"), "?:\\<x>"}) {
    EXPECT_FALSE(FileExists(path)) << path;
    EXPECT_TRUE(FileDelete(path)) << path;
  }
  EXPECT_TRUE(FileDelete(sandbox.Path("*.txt")));
  EXPECT_EQ(sandbox.Tree(),
            (Tree{{".hidden.txt", ""}, {"dir.txt/x", ""}, {"other.log", ""}, {"three.dat", "3"}}));

  EXPECT_FALSE(FileRename(sandbox.Path("three.dat"), sandbox.Path("other.log")));
  EXPECT_FALSE(FileRename(sandbox.Path("missing"), sandbox.Path("x")));
  EXPECT_TRUE(FileRename(sandbox.Path("three.dat"), sandbox.Path("dir.txt/moved")));
  EXPECT_EQ(sandbox.Read("dir.txt/moved"), "3");
}

TEST_F(Install, ProcessesAreEndedByTheEndOfTheirName) {
  const auto first = StartHelper("kt-NotePad.exe");
  const auto second = StartHelper("kt-pad.exe");
  const auto other = StartHelper("kt-pad.exe-ding.exe");
  EXPECT_FALSE(modKillApp::KillApp("kt-nobody.exe"));
  EXPECT_TRUE(modKillApp::KillApp("PAD.exe"));
  EXPECT_TRUE(platform::processes::HasEnded(first));
  EXPECT_TRUE(platform::processes::HasEnded(second));
  EXPECT_FALSE(platform::processes::HasEnded(other));
  EXPECT_TRUE(FileWriteAll(sandbox.Path("kt-pad.exe"), "replaced"));
  (void)platform::processes::Terminate(other, 0);
}

TEST_F(Install, ComponentsAreLeftBehindWhenTheyHang) {
  using modOcxDllReg::RegisterOcxDll;
  const std::string slow = ownFolder + "\\slow_component.dll";
  sandbox.Write("text.dll", "no library");
  EXPECT_FALSE(RegisterOcxDll(sandbox.Path("missing.dll"), 0));
  EXPECT_FALSE(RegisterOcxDll(sandbox.Path("text.dll"), 0));
  EXPECT_FALSE(RegisterOcxDll(slow, 1)) << "no such entry";
  EXPECT_TRUE(RegisterOcxDll(ownFolder + "\\component.dll", 0));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(RegisterOcxDll(slow, 0));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(9'900));
  // It keeps others from loading libraries, for 15 seconds in all.
  sandbox.Write("app.exe", FileReadAll(ownFolder + "\\helper.exe"));
  EXPECT_GT(LaunchFile(sandbox.Path("app.exe"), ""), 32);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(14'000));
  EXPECT_TRUE(Eventually([&] { return sandbox.Has("app.exe.log"); }));
}

TEST_F(Install, AProgramWithBlanksInItsPathIsTheLongestFile) {
  const std::string tool = sandbox.Path("My Tool.exe");
  sandbox.Fill({{"My Tool.exe", ""}, {"My.exe", "bait"}, {"data.txt", ""}, {"a b/x", ""}});
  for (const auto& program :
       {tool, tool.substr(0, tool.size() - 4), sandbox.Path("a b/../My Tool.exe")}) {
    for (const std::string parameters : {"", " /x y", " .", "\t..", " a\\..\\data.txt",
                                         " a/../data.txt", " x\\.\\..\\..\\data.txt"}) {
      EXPECT_EQ(QuoteProgram(program + parameters), '"' + program + '"' + parameters);
    }
  }
  for (const auto& line : Texts{'"' + tool + "\" /x", "missing.exe /x", "notepad x", "", " "}) {
    EXPECT_EQ(QuoteProgram(line), line);
  }
}

TEST_F(Install, HiddenFilesArePutInPlaceAsWell) {
  sandbox.Fill({{"a", "old"}, {"a.bak", "older"}, {".h.tmp", "new"}});
  (void)faults::Hide(sandbox.Path(".h.tmp"));
  EXPECT_EQ(CarryOut("UPDATE|@.h|\nADD|@a|"), WriteFailure) << "nothing was downloaded for a";
  EXPECT_EQ(sandbox.Tree(), (Tree{{"a", "old"}, {"a.bak", "older"}, {".h", "new"}}));
}

}  // namespace
