// Whole runs of the native program, in its real window, of which only the size is looked at.

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>

#include "platform/processes.h"
#include "platform/system.h"
#include "tests/support/loopback_server.h"
#include "tests/support/sandbox.h"

namespace {

namespace processes = platform::processes;
using Texts = std::vector<std::string>;
using Tree = std::map<std::string, std::string>;

const std::string helper = ReadWhole(OwnFolder() / "helper.exe");
const std::string kestrane = ReadWhole(OwnFolder() / "../Kestrane.exe");

class Program : public testing::Test {
 protected:
  void SetUp() override {
    sandbox.Fill({{"Kestrane.exe", kestrane}, {"kt-app.exe", helper}, {"a.exe", "old"}});
  }
  void TearDown() override {
    if (run) (void)processes::Terminate(run->process, 1);
  }

  void Start(const std::string& showSuccess) {
    run = processes::Start('"' + sandbox.Path("Kestrane.exe") + R"(" 2.7.1 "C:\Ledger" )" +
                               server.Url("/KDvelomar.txt") + " \"" + sandbox.Path("kt-app.exe") +
                               "\" " + showSuccess + " \"" + title + '"',
                           1);
    ASSERT_TRUE(run);
  }

  [[nodiscard]] bool HasEnded() const { return processes::HasEnded(run->process); }

  /// What xdotool says of the program's window; empty while there is none.
  [[nodiscard]] std::string Window(const std::string& request) const {
    const std::string command =
        "xdotool search --onlyvisible --name '^" + title + "$' " + request + " 2>/dev/null";
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
    std::string text(1000, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), output.get()));
    return text;
  }

  LoopbackServer server;
  Sandbox sandbox;
  const std::string title = "Kestrane test " + std::to_string(getpid());
  std::optional<processes::StartedProgram> run;
};

TEST_F(Program, UpdatesAndLaunchesTheApplication) {
  server.Serve("/f", {.body = "new"});
  server.Serve("/KDvelomar2.txt",
               {.body = "1.0.3|x\nNAME|Ledger\nVERSION|<|3.0.0\n"
                        "ADD|$AppPath\\a.exe|" +
                        server.Url("/f") + "\nADD|$AppPath\\b c\\d|" + server.Url("/f") +
                        "\nEXECUTE|$AppPath\\kt-app.exe append "
                        "\"$AppPath\\log\" \"two words\"|WAIT|HIDE"});
  Start("no");
  EXPECT_TRUE(Eventually([&] { return HasEnded() && sandbox.Has("kt-app.exe.log"); }));
  EXPECT_EQ(sandbox.Tree(), (Tree{{"Kestrane.exe", Shown(kestrane)},
                                  {"kt-app.exe", Shown(helper)},
                                  {"kt-app.exe.log", "launched\n"},
                                  {"a.exe", "new"},
                                  {"a.exe.bak", "old"},
                                  {"b c/d", "new"},
                                  {"log", "two words\n"}}));
  EXPECT_EQ(server.TakeRequests(),
            (Texts{"HEAD /KDvelomar2.txt HTTP/1.0", "GET /KDvelomar2.txt HTTP/1.1",
                   "HEAD /f HTTP/1.0", "HEAD /f HTTP/1.0", "HEAD /f HTTP/1.0", "HEAD /f HTTP/1.0",
                   "GET /f HTTP/1.1", "GET /f HTTP/1.1"}));
}

TEST_F(Program, ReplacesItselfThroughItsTemporaryCopy) {
  const std::string newer = ReadWhole(OwnFolder() / "newer/Kestrane.exe");
  ASSERT_NE(newer, kestrane);
  sandbox.Write("KestraneTmp.exe", "left over");
  server.Serve("/updater", {.body = newer});
  server.Serve("/KDvelomar2.txt", {.body = "1.0.4|" + server.Url("/updater") +
                                           "\nNAME|x\nVERSION|=|2.7.1\nDELETE|$AppPath\\a.exe"});
  Start("no");
  EXPECT_TRUE(Eventually([&] { return HasEnded() && sandbox.Has("kt-app.exe.log"); }));
  EXPECT_EQ(sandbox.Tree(), (Tree{{"Kestrane.exe", Shown(newer)},
                                  {"kt-app.exe", Shown(helper)},
                                  {"kt-app.exe.log", "launched\n"}}));
  EXPECT_EQ(server.TakeRequests(),
            (Texts{"HEAD /KDvelomar2.txt HTTP/1.0", "GET /KDvelomar2.txt HTTP/1.1",
                   "HEAD /updater HTTP/1.0", "HEAD /updater HTTP/1.0", "GET /updater HTTP/1.1",
                   "HEAD /KDvelomar2.txt HTTP/1.0", "GET /KDvelomar2.txt HTTP/1.1"}));
}

TEST_F(Program, TurnsOneFolderIntoAnotherWithAnUpdateThatWasMade) {
  sandbox.Fill({{"old/app.exe", "1"}, {"old/same", "="}, {"old/gone", "1"}, {"old/data", "1"}});
  sandbox.Fill({{"new/app.exe", "2"}, {"new/same", "="}, {"new/d e/f", "2"}, {"new/data", ""}});
  const auto made = processes::Start(
      '"' + (OwnFolder() / "../kestrane-publish").string() + "\" make \"" +
          sandbox.Folder("old").string() + "\" \"" + sandbox.Folder("new").string() +
          "\" --site \"" + sandbox.Folder("site").string() + "\" --url " + server.Url("") +
          " --from 2.7.1 --to 3.0.0 --updater http://127.0.0.1/k 1.0.3",
      1);
  ASSERT_TRUE(made && Eventually([&] { return processes::HasEnded(made->process); }));
  server.Serve("/KDvelomar2.txt", {.body = sandbox.Read("site/update.txt")});
  server.Serve("/3.0.0/d%20e/f", {.body = sandbox.Read("site/3.0.0/d e/f")});
  server.Serve("/3.0.0/app.exe", {.body = sandbox.Read("site/3.0.0/app.exe")});
  server.Serve("/3.0.0/data", {.body = ""});
  // The updater brings the folder up to date in which it is.
  std::filesystem::copy(sandbox.Folder("old"), sandbox.Folder("."),
                        std::filesystem::copy_options::recursive);
  for (const char* folder : {"old", "new", "site"}) {
    std::filesystem::remove_all(sandbox.Folder(folder));
  }
  Start("no");
  EXPECT_TRUE(Eventually([&] { return HasEnded() && sandbox.Has("kt-app.exe.log"); }));
  EXPECT_EQ(sandbox.Tree(), (Tree{{"Kestrane.exe", Shown(kestrane)},
                                  {"kt-app.exe", Shown(helper)},
                                  {"kt-app.exe.log", "launched\n"},
                                  {"a.exe", "old"},
                                  {"app.exe", "2"},
                                  {"same", "="},
                                  {"d e/f", "2"},
                                  {"data", ""}}));
}

TEST_F(Program, LeavesTheTreeAsItWasWhenADownloadBreaks) {
  server.Serve("/cut", {.body = "longer than this", .cutAt = 6, .stalls = true});
  server.Serve("/KDvelomar2.txt",
               {.body = "1.0.3|x\nNAME|x\nVERSION|=|2.7.1\nADD|$AppPath\\a.exe|" +
                        server.Url("/cut") + "\nDELETE|$AppPath\\a.exe"});
  Start("no");
  std::string full;
  EXPECT_TRUE(Eventually([&] { return !(full = Window("getwindowgeometry")).empty(); }));
  server.Release();
  EXPECT_TRUE(Eventually([&] { return Window("getwindowgeometry") != full; })) << full;
  (void)Window("windowfocus key Return");  // "Finalizar"
  EXPECT_TRUE(Eventually([&] { return HasEnded(); }));
  EXPECT_EQ(sandbox.Tree(), (Tree{{"Kestrane.exe", Shown(kestrane)},
                                  {"kt-app.exe", Shown(helper)},
                                  {"a.exe", "old"},
                                  {"a.exe.tmp", "longer"}}));
}

}  // namespace
