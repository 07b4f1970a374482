// Path macros, file helpers, processes, components and the action executor.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "install/action_executor.h"
#include "install/component_registration.h"
#include "install/file_helpers.h"
#include "install/path_macros.h"
#include "install/process_control.h"
#include "platform/processes.h"
#include "platform/system.h"
#include "run/messages.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "tests/support/faults.h"
#include "tests/support/sandbox.h"
#include "tests/support/scripted_window.h"

namespace {

using namespace modPrincipal;
using namespace modFunciones;
using scripted_window::state;
using Texts = std::vector<std::string>;
using Tree = std::map<std::string, std::string>;

const std::string ownFolder = platform::system::ExecutableFolder();

class Install : public testing::Test {
 protected:
  void SetUp() override {
    ResetActionTable();
    scripted_window::Reset();
    AppTitle = "Ledger";
  }

  static void Record(const std::string& command, const std::string& arg1,
                     const std::string& arg2 = "", const std::string& arg3 = "") {
    ActionCommand.push_back(command);
    ActionArg1.push_back(arg1);
    ActionArg2.push_back(arg2);
    ActionArg3.push_back(arg3);
    ActionSize.push_back(0);
  }

  /// The helper program under a name of its own, as a command line without parameters.
  std::string Helper(const std::string& name) const {
    sandbox.Write(name, FileReadAll(ownFolder + "\\helper.exe"));
    return sandbox.Path(name);
  }

  /// Starts a helper that stays, and returns once it is up.
  platform::processes::StartedProgram StartHelper(const std::string& name) const {
    const std::string sign = sandbox.Path(name + ".up");
    auto started =
        platform::processes::Start(QuoteProgram(Helper(name) + " stay \"" + sign + "\""), 0);
    for (int i = 0; i < 100 && FileReadAll(sign).empty(); ++i) platform::processes::Sleep(50);
    EXPECT_NE(FileReadAll(sign), "");
    return std::move(*started);
  }

  Sandbox sandbox;
};

TEST_F(Install, MacrosBecomeFolders) {
  const std::string windows = GetWindowsDir();
  EXPECT_FALSE(windows.empty());
  EXPECT_NE(GetSystemDir(), windows);
  EXPECT_EQ(ExpandMacros("$WinPath\\n $winpath $WinPath"), windows + "\\n $winpath " + windows);
  EXPECT_EQ(ExpandMacros("$WinSysPath\\x"), GetSystemDir() + "\\x");
  EXPECT_EQ(ExpandMacros("$AppPath$AppPath$App"), ownFolder + ownFolder + "$App");
  EXPECT_EQ(ExpandMacros(""), "");
}

TEST_F(Install, FolderPathsAreCreatedOutermostFirst) {
  CreateFolderPath(sandbox.Path("a/b/c.txt"));
  CreateFolderPath(sandbox.Path("a/d") + "\\");
  sandbox.Write("file", "");
  CreateFolderPath(sandbox.Path("file/x/y"));  // cannot be created
  EXPECT_TRUE(sandbox.Has("a/b"));
  EXPECT_TRUE(sandbox.Has("a/d"));
  EXPECT_FALSE(sandbox.Has("a/b/c.txt"));
  EXPECT_EQ(sandbox.Tree(), (Tree{{"file", ""}}));
}

TEST_F(Install, FilesAreReadAndWrittenWhole) {
  std::string allBytes;
  for (int byte = 0; byte < 256; ++byte) allBytes += static_cast<char>(byte);
  EXPECT_TRUE(FileWriteAll(sandbox.Path("all"), allBytes + allBytes));
  EXPECT_TRUE(FileWriteAll(sandbox.Path("all"), allBytes));
  EXPECT_EQ(FileReadAll(sandbox.Path("all")), allBytes);
  EXPECT_TRUE(FileWriteAll(sandbox.Path("empty"), ""));
  EXPECT_EQ(FileReadAll(sandbox.Path("empty")), "");
  EXPECT_EQ(FileReadAll(sandbox.Path("missing")), "");
  EXPECT_FALSE(FileWriteAll(sandbox.Path("no/folder"), "x"));
  const auto lock = faults::Lock(sandbox.Path("all"));
  EXPECT_FALSE(FileWriteAll(sandbox.Path("all"), "new"));
  EXPECT_EQ(FileReadAll(sandbox.Path("all")), "");
}

TEST_F(Install, FilesAreFoundDeletedAndRenamed) {
  for (const char* name : {"one.txt", "two.txt", "three.dat", "dir.txt/x", "locked.log"}) {
    sandbox.Write(name, name);
  }
  sandbox.Write(".hidden.txt", "h");
  const std::string hidden = faults::Hide(sandbox.Path(".hidden.txt"));
  EXPECT_TRUE(FileExists(sandbox.Path("one.txt")));
  EXPECT_TRUE(FileExists(sandbox.Path("t?o.*")));
  for (const std::string& path : std::initializer_list<std::string>{
           sandbox.Path("dir.txt"), sandbox.Path("missing"), hidden, sandbox.Path(""),
           sandbox.Path("no/x"), std::string("?:\\<x>")}) {
    EXPECT_FALSE(FileExists(path)) << path;
    EXPECT_TRUE(FileDelete(path)) << path;
  }
  EXPECT_TRUE(FileDelete(sandbox.Path("*.txt")));
  EXPECT_EQ(sandbox.Tree(), (Tree{{".hidden.txt", "h"},
                                  {"dir.txt/x", "dir.txt/x"},
                                  {"locked.log", "locked.log"},
                                  {"three.dat", "three.dat"}}));

  EXPECT_FALSE(FileRename(sandbox.Path("three.dat"), sandbox.Path("locked.log")));
  EXPECT_FALSE(FileRename(sandbox.Path("missing"), sandbox.Path("x")));
  EXPECT_TRUE(FileRename(sandbox.Path("three.dat"), sandbox.Path("dir.txt/moved")));
  EXPECT_EQ(sandbox.Read("dir.txt/moved"), "three.dat");
  const auto lock = faults::Lock(sandbox.Path("locked.log"));
  EXPECT_FALSE(FileDelete(sandbox.Path("*.log")));
  EXPECT_TRUE(sandbox.Has("locked.log"));
}

TEST_F(Install, ProcessesAreEndedByTheEndOfTheirName) {
  const auto first = StartHelper("kt-Notepad.exe");
  const auto second = StartHelper("kt-pad.exe");
  const auto other = StartHelper("kt-padding.exe");
  EXPECT_FALSE(modKillApp::KillApp("kt-nobody.exe"));
  EXPECT_FALSE(modKillApp::KillApp(""));
  EXPECT_FALSE(platform::processes::HasEnded(other.process));
  EXPECT_TRUE(modKillApp::KillApp("PAD.exe"));
  EXPECT_TRUE(platform::processes::HasEnded(first.process));
  EXPECT_TRUE(platform::processes::HasEnded(second.process));
  EXPECT_FALSE(platform::processes::HasEnded(other.process));
  EXPECT_TRUE(FileWriteAll(sandbox.Path("kt-pad.exe"), "replaced"));
  EXPECT_TRUE(modKillApp::KillProcess(other.id, 7));
  std::uint32_t exitCode = 0;
  EXPECT_TRUE(platform::processes::ExitCode(other.process, exitCode));
  EXPECT_EQ(exitCode, 7U);
  EXPECT_FALSE(modKillApp::KillProcess(0, 0));
}

TEST_F(Install, WaitingEndsWithTheProcess) {
  const auto program =
      platform::processes::Start(QuoteProgram(Helper("exits.exe") + " exit 259"), 0);
  ASSERT_TRUE(program);
  WaitForProcess(program->id);
  EXPECT_TRUE(platform::processes::HasEnded(program->process));
  EXPECT_GT(state.yields, 1);
  state.yields = 0;
  WaitForProcess(0);
  EXPECT_EQ(state.yields, 1);
}

TEST_F(Install, ComponentsRegisterThemselves) {
  using modOcxDllReg::RegisterOcxDll;
  static const std::string variable = "KESTRANE_TEST_LOG=" + sandbox.Path("log");
  putenv(const_cast<char*>(variable.c_str()));
  sandbox.Write("text.dll", "no library");
  EXPECT_FALSE(RegisterOcxDll(sandbox.Path("missing.dll"), 0));
  EXPECT_FALSE(RegisterOcxDll(sandbox.Path("text.dll"), 0));
  EXPECT_FALSE(RegisterOcxDll(ownFolder + "\\slow_component.dll", 1)) << "no such entry";
  EXPECT_TRUE(state.history.empty()) << "the pointer was not touched";

  EXPECT_TRUE(RegisterOcxDll(ownFolder + "\\component.dll", 0));
  EXPECT_TRUE(RegisterOcxDll(ownFolder + "\\component.dll", 1));
  EXPECT_EQ(sandbox.Read("log"), "registered\r\nunregistered\r\n");
  EXPECT_EQ(state.history, (Texts{"hourglass", "arrow", "hourglass", "arrow"}));
}

TEST_F(Install, AComponentThatHangsIsLeftBehind) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(modOcxDllReg::RegisterOcxDll(ownFolder + "\\slow_component.dll", 0));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(9'900));
  EXPECT_EQ(state.history, (Texts{"hourglass", "arrow"}));
}

TEST_F(Install, AProgramWithBlanksInItsPathIsTheLongestFile) {
  const std::string tool = Helper("My Tool.exe");
  sandbox.Write("My.exe", "bait");
  const std::string withoutExtension = tool.substr(0, tool.size() - 4);
  EXPECT_EQ(QuoteProgram(tool), '"' + tool + '"');
  EXPECT_EQ(QuoteProgram(tool + " /x y"), '"' + tool + "\" /x y");
  EXPECT_EQ(QuoteProgram(withoutExtension + " /x"), '"' + withoutExtension + "\" /x");
  for (const std::string& line : {"\"" + tool + "\" /x", sandbox.Path("none at all.exe") + " /x",
                                  std::string("notepad x"), std::string(), std::string(" ")}) {
    EXPECT_EQ(QuoteProgram(line), line);
  }
}

TEST_F(Install, FilesArePutInPlace) {
  sandbox.Write("old", "old");
  sandbox.Write("old.bak", "older");
  sandbox.Write("old.tmp", "new");
  sandbox.Write("fresh.tmp", "fresh");
  sandbox.Write("changed", "was");
  sandbox.Write("changed.tmp", "is");
  sandbox.Write("added.tmp", "added");
  sandbox.Write("gone", "x");
  Record("ADD", sandbox.Path("old"));
  Record("ADD", sandbox.Path("fresh"));
  Record("UPDATE", sandbox.Path("changed"));
  Record("UPDATE", sandbox.Path("added"));
  Record("DELETE", sandbox.Path("gone"));
  Record("delete", sandbox.Path("old"));  // command words are matched exactly
  EXPECT_EQ(RunActions(), "");
  EXPECT_EQ(sandbox.Tree(), (Tree{{"old", "new"},
                                  {"old.bak", "old"},
                                  {"fresh", "fresh"},
                                  {"changed", "is"},
                                  {"added", "added"}}));
  EXPECT_EQ(state.text[frmPrincipal::lblFile], "");
  EXPECT_EQ(state.text[frmPrincipal::lblTotal], InstallCaption);
  EXPECT_EQ(state.refreshes[frmPrincipal::picTotal], 6);
  EXPECT_EQ(state.drawn[frmPrincipal::picTotal].size(), 33U);
}

TEST_F(Install, AFailedWriteEndsThePhase) {
  sandbox.Write("locked", "old");
  sandbox.Write("locked.tmp", "new");
  sandbox.Write("later", "stays");
  Record("DELETE", sandbox.Path("locked"));
  Record("UPDATE", sandbox.Path("locked"));
  Record("DELETE", sandbox.Path("later"));
  const Tree before = sandbox.Tree();
  {
    const auto lock = faults::Lock(sandbox.Path("locked"));
    EXPECT_EQ(RunActions(), WriteFailure);
    ActionCommand[1] = "ADD";
    EXPECT_EQ(RunActions(), WriteFailure);
  }
  EXPECT_EQ(sandbox.Tree(), before);

  sandbox.Write("locked.tmp", "new");
  ResetActionTable();
  Record("ADD", sandbox.Path("later"));  // its download is missing: the backup has been made
  EXPECT_EQ(RunActions(), WriteFailure);
  EXPECT_EQ(sandbox.Read("later.bak"), "stays");
}

TEST_F(Install, AFailedDeletionIsToldAtTheEnd) {
  sandbox.Write("locked", "x");
  sandbox.Write("later", "x");
  Record("DELETE", sandbox.Path("locked"));
  Record("DELETE", sandbox.Path("later"));
  const auto lock = faults::Lock(sandbox.Path("locked"));
  EXPECT_EQ(RunActions(), DeleteFailure);
  EXPECT_FALSE(sandbox.Has("later"));
  EXPECT_EQ(RunAction("DELETE", sandbox.Path("locked"), "", ""), "");
}

TEST_F(Install, UnknownStylesKeepTheLastOneOfThePhase) {
  for (const char* style : {"?", "critical", "?", "Exclamation", "information", "NOTHING"}) {
    Record("MSG", "m", "", style);
  }
  EXPECT_EQ(RunActions(), "");
  EXPECT_EQ(state.messageBoxes, (Texts{"0|Ledger|m", "16|Ledger|m", "16|Ledger|m", "48|Ledger|m",
                                       "64|Ledger|m", "0|Ledger|m"}));
  RunAction("MSG", "n", "", "CRITICAL");
  RunAction("MSG", "n", "", "?");
  EXPECT_EQ(state.messageBoxes[7], "0|Ledger|n");
}

TEST_F(Install, ProgramsAreStartedAndWaitedFor) {
  const std::string helper = Helper("my helper.exe");
  const std::string append = helper + " append \"" + sandbox.Path("out") + "\" ";
  Record("EXECUTE", append + "first", "wait", "HIDE");
  Record("EXECUTE", append + "never", "later", "HIDE");
  Record("EXECUTE", sandbox.Path("missing.exe"), "WAIT", "HIDE");
  Record("SLEEP", "0");
  Record("SLEEP", "-5");
  Record("SLEEP", "a while");
  Record("EXECUTE", append + "second", "WAIT", "HIDE");
  EXPECT_EQ(RunActions(), "");
  EXPECT_EQ(sandbox.Read("out"), "first\r\nsecond\r\n");

  const std::string sign = sandbox.Path("kt-stays.up");
  RunAction("EXECUTE", Helper("kt-stays.exe") + " stay \"" + sign + "\"", "NOWAIT", "HIDE");
  for (int i = 0; i < 100 && FileReadAll(sign).empty(); ++i) platform::processes::Sleep(50);
  RunAction("KILL", "KT-STAYS.EXE", "", "");
  EXPECT_FALSE(modKillApp::KillApp("kt-stays.exe"));
  sandbox.Write("x.tmp", "x");
  RunAction("ADD", sandbox.Path("x"), "", "");
  EXPECT_FALSE(sandbox.Has("x")) << "only recorded rows put files in place";
}

}  // namespace
