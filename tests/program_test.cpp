// Whole runs of the program that users get, of which the files and the requests are looked at.

#include <cstdio>
#include <cstdlib>
#include <random>

#include "base/arrays.h"
#include "base/binary_text.h"
#include "platform/window.h"
#include "run/progress_window.h"
#include "run/run_state.h"
#include "tests/support/faults.h"
#include "tests/support/program_fixture.h"
#include "tests/support/update_story.h"
#include "transfer/download.h"
#include "transfer/http_probe.h"
#include "transfer/signed_script.h"

namespace {

TEST_F(Program, CarriesOutAnUpdateWithEveryAction) {
  const std::string component = ReadWhole(OwnFolder() / "component.dll");
  sandbox.Fill({{"kt-ledger.exe", "1"}, {"oldprint.dll", "x"}, {"old.txt", "x"}});
  sandbox.Fill({{"reports.dll", "old"}, {"reports.dll.bak", "older"}});
  // It takes longer than it is waited for, and keeps others from loading libraries meanwhile.
  const std::string slow = ReadWhole(OwnFolder() / "slow_component.dll");
  sandbox.Write("slow.dll", slow);
  server.Serve("/ledger", {.body = helper});
  server.Serve("/reports", {.body = component});
  server.Serve("/help", {.body = "ayuda"});
  ServeScript("#every action once\n!DELETE|" + sandbox.Path("oldprint.dll") +
              "\nUPDATE|$AppPath\\kt-ledger.exe|" + server.Url("/ledger") +
              "\nADD|$AppPath\\reports.dll|" + server.Url("/reports") +
              "\nADD|$AppPath\\help\\es es\\help.txt|" + server.Url("/help") +
              "\nDELETE|$AppPath\\old.txt"
              "\nEXECUTE|\"$AppPath\\kt-ledger.exe\" append \"$AppPath\\out\" \"2 words\"|wait|MIN"
              "\nEXECUTE|$AppPath\\kt-ledger.exe append \"$AppPath\\out\" never|later|MIN"
              "\nEXECUTE|$AppPath\\missing.exe|WAIT|HIDE\nSLEEP|0\nSLEEP|-5\nSLEEP|a while"
              "\nEXECUTE|$AppPath\\kt-ledger.exe stay \"$AppPath\\stay\"|NOWAIT|HIDE"
              "\nEXECUTE|$AppPath\\kt-ledger.exe append \"$AppPath\\gone\" x|WAIT|HIDE"
              "\nDELETE|$AppPath\\gone"
              "\nSLEEP|3000\nKILL|KT-LEDGER.EXE"
              "\nREGISTER|$AppPath\\reports.dll\nUNREGISTER|$AppPath\\reports.dll"
              "\nREGISTER|$AppPath\\out\nREGISTER|$AppPath\\slow.dll\nEND\nMSG\n");
  EXPECT_TRUE(RunsSilently());
  EXPECT_EQ(Shown(sandbox.Read("kt-ledger.exe")), Shown(helper));
  sandbox.Write("kt-ledger.exe", "of no process");
  EXPECT_EQ(Files(), (Tree{{"kt-ledger.exe", "of no process"},
                           {"reports.dll", Shown(component)},
                           {"reports.dll.bak", "old"},
                           {"help/es es/help.txt", "ayuda"},
                           {"out", "2 words\n"},
                           {"stay", "up\n"},
                           {"component.log", "loaded\nregistered\nloaded\nunregistered\nloaded\n"},
                           {"slow.dll", Shown(slow)},
                           {"kt-app.exe.log", "launched\n"}}));
}

TEST_F(Program, ReplacesItselfAndTurnsOneFolderIntoAnotherWithAnUpdateThatWasMade) {
  sandbox.Fill({{"old/app.exe", "1"}, {"old/same", "="}, {"old/b c/gone", "1"}, {"old/data", "1"}});
  sandbox.Fill({{"new/app.exe", "2"}, {"new/same", "="}, {"new/d/e/f", "2"}, {"new/data", ""}});
  sandbox.Fill({{"new/b c/x", "2"}, {"old/mine", "edited"}, {"new/mine", "default"}});
  std::filesystem::rename(sandbox.Folder("new/b c/x"), sandbox.Folder("new/b c") / u8"ñ #%.txt");
  const std::string tool = (OwnFolder() / "../kestrane-publish").string();
  const std::string key = sandbox.Folder("own.pem").string();
  Run(tool, {"key", key});
  ASSERT_TRUE(Ends());
  const std::string newer = ReadWhole(OwnFolder() / "newer/Kestrane.exe");
  sandbox.Write("site/Kestrane.exe", newer);
  Run(tool,
      {"make", sandbox.Folder("old").string(), sandbox.Folder("new").string(), "--site",
       sandbox.Folder("site").string(), "--url", server.Url(""), "--from", "2.7.1", "--to", "3.0.0",
       "--updater", server.Url("/Kestrane.exe"), NEWER_VERSION, "--keep", "mine", "--key", key});
  ASSERT_TRUE(Ends());
  server.ExpectAnything();
  for (const auto& [name, shown] : sandbox.Tree("site")) {
    server.Serve("/" + name, {sandbox.Read("site/" + name)});
  }
  server.Serve("/3.0.0/b%20c/%C3%B1%20%23%25.txt", {"2"});
  sandbox.Fill({{"old/Kestrane.exe", kestrane}, {"old/KestraneTmp.exe", "left over"}});
  const std::string script = sandbox.Read("site/update.txt");
  const Texts fields = modFunciones::Split(script.substr(script.find("#SIGNATURE")), '|');
  const std::string url =
      server.Url("/update.txt#key=") +
      modFunciones::Sha256Text(modFunciones::FromBase64(fields.at(1)).value_or(""));
  Run(sandbox.Path("old/Kestrane.exe"), {"2.7.1", "C:", url, sandbox.Path("kt-app.exe"), "no"});
  ASSERT_TRUE(Eventually([&] { return sandbox.Has("kt-app.exe.log"); }));
  Tree made = sandbox.Tree("new");
  made["Kestrane.exe"] = Shown(newer);
  made["mine"] = "edited";
  EXPECT_EQ(sandbox.Tree("old"), made);
}

TEST_F(Program, LosesNothingWhenItIsKilledAtAnyMoment) {
  using Clock = std::chrono::steady_clock;
  const char* wanted = std::getenv("KESTRANE_KILLS");
  const int kills = wanted != nullptr ? std::atoi(wanted) : 12;
  const unsigned seed = std::random_device()();
  std::printf("%d kills, seed %u\n", kills, seed);
  std::mt19937 random(seed);
  const UpdateStory story(300'000);
  server.ExpectAnything();
  Clock::duration duration = {};  // of a run that nobody disturbs
  for (int i = 0; i <= kills; ++i) {
    SCOPED_TRACE(i);
    const Sandbox files;
    story.Prepare(server, files);
    const auto start = Clock::now();
    Start({"none", "no"});
    if (i == 0) {
      ASSERT_TRUE(Ends());
      duration = Clock::now() - start;
      EXPECT_EQ(files.Tree(), story.After());
    }
    std::this_thread::sleep_for(duration * (random() % 1000) / 1000);
    Kill();
    const Tree left = files.Tree();
    story.ExpectNothingLost(left);
    Start({"none", "no"});
    ASSERT_TRUE(Ends());
    EXPECT_EQ(files.Tree(), story.AfterOnceMore(left));
  }
}

/// In this process and its real window.
TEST(Leaks, AThousandTransfersKeepNothing) {
  using namespace modFunciones;
  constexpr int WarmUp = 100;
  constexpr int Count = 1000;
  constexpr long MemoryNoise = 600;  // kilobytes; a thread or a root handle a transfer is more
  LoopbackServer server;
  const Sandbox sandbox;
  server.Serve("/f", {.body = std::string(5000, 'k'), .asked = "*"});
  server.Serve("/missing", {.status = "404 Not Found", .asked = "*"});
  frmPrincipal::Load([] {});
  platform::window::Show();
  modPrincipal::TransferProgressOn = true;
  modPrincipal::FileBytes = modPrincipal::TotalBytes = 5000;

  faults::Resources before;
  for (int i = 0; i < WarmUp + Count; ++i) {
    server.WaitUntilQuiet();  // its connections belong to this process as well
    if (i == WarmUp) before = faults::ResourcesInUse();
    (void)IsAvailable(server.Url(i % 100 == 0 ? "/missing" : "/f"));
    modPrincipal::FileBytesDone = modPrincipal::TotalBytesDone = 0;
    const std::string target = sandbox.Path("f");
    ASSERT_EQ(DownloadUrl(server.Url("/f"), target, UserAgentText, PreconfiguredAccess, ""),
              target);
    (void)DownloadUrl("http://127.0.0.1:1/", "", UserAgentText, PreconfiguredAccess, "");
  }
  server.WaitUntilQuiet();
  const faults::Resources after = faults::ResourcesInUse();
  EXPECT_EQ(after.handles, before.handles);
  // Painting may hold some at either moment; one kept in every transfer would be hundreds.
  EXPECT_LT(after.graphicsObjects, before.graphicsObjects + Count / 6);
  EXPECT_LT(after.kilobytes, before.kilobytes + MemoryNoise);
}

}  // namespace
