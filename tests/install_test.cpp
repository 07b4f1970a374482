// What the install phase does to real files.

#include <gtest/gtest.h>

#include "install/action_executor.h"
#include "install/file_helpers.h"
#include "run/messages.h"
#include "script/action_table.h"
#include "tests/support/faults.h"
#include "tests/support/sandbox.h"
#include "tests/support/scripted_window.h"

namespace {

using namespace modPrincipal;
using namespace modFunciones;
using Texts = std::vector<std::string>;

class Install : public testing::Test {
 protected:
  std::string CarryOut(const std::string& command, const std::string& name) const {
    ActionCommand = {command};
    ActionArg1 = {sandbox.Path(name)};
    ActionArg2 = ActionArg3 = {""};
    return RunActions();
  }

  Sandbox sandbox;
};

TEST_F(Install, FilesAreReadAndWrittenWhole) {
  for (const auto& content : Texts{std::string("longer\r\n\x1A\0\xFF", 11), "\xFF", ""}) {
    EXPECT_TRUE(FileWriteAll(sandbox.Path("f"), content));
    EXPECT_EQ(FileReadAll(sandbox.Path("f")), content);
  }
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
    bool shared = false;
    bool forGood = false;
  } cases[] = {
      {"UPDATE", "a"},
      {"UPDATE", "a", true},
      {"UPDATE", "a.tmp"},
      {"ADD", "a"},
      {"ADD", "a.tmp"},
      {"UPDATE", "a", true, true},
      {"UPDATE", "a.tmp", false, true},
      {"ADD", "a.tmp", false, true},
  };
  for (const auto& [row, held, shared, forGood] : cases) {
    SCOPED_TRACE(row + " with " + held);
    sandbox.Fill({{"a", "old"}, {"a.tmp", "new"}, {"a.bak", "older"}});
    auto lock = faults::Lock(sandbox.Path(held), shared);
    if (!lock) GTEST_SKIP() << "no program stands in the way of another on this system";
    std::jthread other([&lock, stays = forGood] {
      if (stays) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
      lock.reset();
    });
    EXPECT_EQ(CarryOut(row, "a"), forGood ? WriteFailure : "");
    other.join();
    lock.reset();
    EXPECT_EQ(sandbox.Read("a"), forGood ? "old" : "new");
    EXPECT_EQ(sandbox.Read("a.bak"), row == "ADD" && !forGood ? "old" : "older");
  }
}

TEST_F(Install, FilesAreFoundDeletedAndRenamed) {
  for (const std::string name :
       {"one.txt", "two.txt", "three.dat", "dir.txt/x", "other.log", ".hidden.txt", ".h.tmp"}) {
    sandbox.Write(name, "");
  }
  const std::string hidden = faults::Hide(sandbox.Path(".hidden.txt"));
  (void)faults::Hide(sandbox.Path(".h.tmp"));
  EXPECT_TRUE(FileExists(sandbox.Path("t?o.*")));
  for (const auto& path : Texts{sandbox.Path("dir.txt"), sandbox.Path("missing"), hidden,
                                sandbox.Path(""), sandbox.Path("no/x"), "?:\\<x>"}) {
    EXPECT_FALSE(FileExists(path)) << path;
    EXPECT_TRUE(FileDelete(path)) << path;
  }
  EXPECT_TRUE(FileDelete(sandbox.Path("*.txt")));
  EXPECT_EQ(CarryOut("UPDATE", ".h"), "");
  EXPECT_EQ(CarryOut("ADD", "three.dat"), WriteFailure) << "nothing was downloaded";
  std::string left;
  for (const auto& [name, content] : sandbox.Tree()) left += name + ' ';
  EXPECT_EQ(left, ".h .hidden.txt dir.txt/x other.log three.dat ");
  EXPECT_FALSE(FileRename(sandbox.Path("three.dat"), sandbox.Path("other.log")));
  EXPECT_FALSE(FileRename(sandbox.Path("missing"), sandbox.Path("x")));
  EXPECT_TRUE(FileRename(sandbox.Path("three.dat"), sandbox.Path("dir.txt/moved")));
  EXPECT_TRUE(sandbox.Has("dir.txt/moved"));
}

TEST_F(Install, AProgramWithBlanksInItsPathIsTheLongestFile) {
  const std::string tool = sandbox.Path("My Tool.exe");
  sandbox.Fill({{"My Tool.exe", ""}, {"My.exe", "bait"}, {"data.txt", ""}, {"a b/x", ""}});
  for (const auto& program : {tool, sandbox.Path("a b/../My Tool")}) {
    for (const std::string parameters : {"", " /x y", "\t..", " x\\.\\..\\..\\data.txt"}) {
      EXPECT_EQ(QuoteProgram(program + parameters), '"' + program + '"' + parameters);
    }
  }
  for (const auto& line : Texts{'"' + tool + "\" /x", "missing.exe /x", "notepad x", "", " "}) {
    EXPECT_EQ(QuoteProgram(line), line);
  }
}

}  // namespace
