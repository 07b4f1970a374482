// URLs, probes, downloads and the download phase, against a server on loopback.

#include <gmock/gmock.h>

#include "install/path_macros.h"
#include "platform/system.h"
#include "run/messages.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "tests/support/loopback_server.h"
#include "tests/support/sandbox.h"
#include "tests/support/scripted_window.h"
#include "transfer/availability.h"
#include "transfer/download.h"
#include "transfer/download_phase.h"
#include "transfer/http_probe.h"
#include "transfer/url.h"

namespace {

using namespace modPrincipal;
using namespace modFunciones;
using scripted_window::state;
using testing::IsSupersetOf;
using Texts = std::vector<std::string>;

TEST(Url, IsSplitIntoHostPortAndPath) {
  const std::map<std::string, Texts> cases = {
      {"server:8080", {"server", "8080", "/"}},
      {"http://server:81/a/b.zip", {"server", "81", "/a/b.zip"}},
      {"server", {"server", "80", "/"}},
      {"http://server/dir/http://x", {"server", "80", "/dir/x"}},
      {"HTTP://server/a", {"server", "80", "/a"}},
      {"https://server", {"server", "443", "/", "https"}},
      {"hTTpS://server:81/http://x", {"server", "81", "/http://x", "https"}},
      {"ftp://server/a", {"ftp", "", "//server/a"}},
      {"WAIT", {"WAIT", "80", "/"}},
  };
  for (const auto& [url, parts] : cases) EXPECT_EQ(SplitUrl(url), parts) << url;
  for (const char* url :
       {"http://", "", "http://server/a:b", "https://", "https://server/a:b", "/:"}) {
    EXPECT_EQ(SplitUrl(url), Texts()) << url;
  }

  EXPECT_EQ(PortNumber("0"), 0);
  EXPECT_EQ(PortNumber("32767"), 32767);
  for (const char* text : {"", "x", "-1", "+80", "80 ", "32768", "65616", "4294967376"}) {
    EXPECT_EQ(PortNumber(text), std::nullopt) << text;
  }
}

class Transfer : public testing::Test {
 protected:
  void SetUp() override {
    ResetRunState();
    ResetActionTable();
    scripted_window::Reset();
  }

  static std::string Fetch(const std::string& url, const std::string& target = "") {
    return DownloadUrl(url, target, UserAgentText, PreconfiguredAccess, "");
  }

  static std::string Bytes(std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(i * 7 + i / 256);
    return bytes;
  }

  LoopbackServer server;
  Sandbox sandbox;
};

TEST_F(Transfer, RecordingAnActionChecksItsFile) {
  server.Serve("/f", {.body = Bytes(2048)});
  server.Serve("/moved", {.status = "302 Found", .headers = "Location: /f\r\n"});
  server.Serve("/huge", {.contentLength = "2147483648"});
  server.Serve("/most", {.contentLength = "2147483647"});
  const struct {
    std::string command;
    std::string url;
    bool recorded;
    std::int32_t size;
    std::size_t requests;
  } cases[] = {
      {"add", server.Url("/f"), true, 2048, 2},
      {"ADD", server.Url("/moved"), true, 2048, 4},
      {"UPDATE", server.Url("/most"), true, 2147483647, 2},
      {"ADD", server.Url("/huge"), false, 0, 2},
      {"ADD", server.Url("/missing"), false, 0, 1},
      {"ADD", "http://127.0.0.1:99999/f", false, 0, 0},
      {"ADD", "http:///a:b", false, 0, 0},
      {"ADD", "", true, 0, 0},
      {"DELETE", server.Url("/f"), true, 0, 0},
      {"EXECUTE", "a/b:c", true, 0, 0},
  };
  for (const auto& [command, url, recorded, size, requests] : cases) {
    EXPECT_EQ(AddAction(command, "$AppPath\\x$WinPath$WinSysPath$winpath", url, "s"), recorded)
        << url;
    EXPECT_EQ(ActionSize.back(), size) << url;
    EXPECT_EQ(server.TakeRequests().size(), requests) << url;
  }
  EXPECT_EQ(ActionCommand.size(), std::size(cases)) << "what is not available is recorded as well";
  EXPECT_EQ(ActionCommand.front(), "ADD");
  EXPECT_EQ(ActionArg1.back(), platform::system::ExecutableFolder() + "\\x" + GetWindowsDir() +
                                   GetSystemDir() + "$winpath");
  EXPECT_NE(GetWindowsDir(), GetSystemDir());
  EXPECT_EQ(ActionArg2.back(), "a/b:c");
  EXPECT_EQ(ActionArg3.back(), "s");
}

TEST_F(Transfer, DownloadsWholeBodies) {
  for (const std::size_t size : {0U, 1U, 1023U, 1024U, 1025U, 2048U, 70'000U}) {
    const std::string path = "/" + std::to_string(size);
    server.Serve(path, {.body = Bytes(size)});
    EXPECT_EQ(Fetch(server.Url(path)), Bytes(size)) << size;
    sandbox.Write("f", "an older and longer content" + Bytes(3000));
    EXPECT_EQ(Fetch(server.Url(path), sandbox.Path("f")), sandbox.Path("f")) << size;
    EXPECT_EQ(sandbox.Read("f"), Bytes(size)) << size;
  }
  server.Serve("/error", {.body = "page", .status = "500 Broken"});
  server.Serve("/moved", {.status = "302 Found", .headers = "Location: /error\r\n"});
  EXPECT_EQ(Fetch(server.Url("/moved")), "page");
  for (const std::string url : {"http://127.0.0.1:1/f", "127.0.0.1/f", "", "nonsense"}) {
    EXPECT_EQ(Fetch(url, sandbox.Path("f")), "") << url;
  }
  EXPECT_EQ(sandbox.Read("f"), Bytes(70'000)) << "an address of no use touches no file";
  EXPECT_TRUE(state.history.empty());
  EXPECT_EQ(TotalBytesDone + FileBytesDone, 0);
}

TEST(Progress, IsToldInKilobytesOrMegabytes) {
  const std::string point = platform::system::DecimalSeparator();
  EXPECT_EQ(ProgressText(512, 2560), "0 KB/2 KB");
  EXPECT_EQ(ProgressText(12'288, 9'999'999), "12 KB/9766 KB");
  EXPECT_EQ(ProgressText(0, 10'000'000), "0" + point + "00 MB/9" + point + "54 MB");
  EXPECT_EQ(ProgressText(1'100'000, 5'000'000'000), "1" + point + "05 MB/4768" + point + "37 MB");
}

TEST_F(Transfer, PhaseTellsHowFarItIs) {
  server.Serve("/a", {.body = Bytes(3000)});
  server.Serve("/b", {.body = Bytes(5000)});
  server.Serve("/empty", {});
  ASSERT_TRUE(AddAction("KILL", "x", "", ""));
  EXPECT_EQ(DownloadFiles(), "") << "nothing to download";
  EXPECT_TRUE(state.history.empty());
  for (const std::string name : {"/a", "/b", "/empty"}) {
    ASSERT_TRUE(AddAction("ADD", sandbox.Path("one/two three" + name), server.Url(name), ""));
  }
  bool wasFull = false;
  state.onYield = [&] { wasFull |= state.drawn[frmPrincipal::picFile].size() == 33; };
  EXPECT_EQ(DownloadFiles(), "");
  EXPECT_TRUE(wasFull);
  EXPECT_EQ(sandbox.Tree().size(), 3U);
  EXPECT_EQ(TotalBytesDone, 8000);
  EXPECT_FALSE(TransferProgressOn);
  EXPECT_THAT(state.history, IsSupersetOf({"4:3 KB/3 KB", "7:3 KB/8 KB", "7:4 KB/8 KB",
                                           "4:5 KB/5 KB", "7:8 KB/8 KB", "4:0 KB/0 KB"}));
  EXPECT_EQ(state.text[frmPrincipal::lblFileProgreso], "");
  EXPECT_EQ(state.text[frmPrincipal::lblTotalProgreso], "");
  EXPECT_TRUE(state.drawn[frmPrincipal::picFile].empty());
  EXPECT_TRUE(state.drawn[frmPrincipal::picTotal].empty());

  ASSERT_TRUE(AddAction("ADD", sandbox.Path("no-url"), "", ""));
  EXPECT_EQ(DownloadFiles(), WriteFailure);
}

TEST_F(Transfer, PhaseNeedsTheSpaceOfAllFiles) {
  const std::int64_t free = FreeDiskSpaceKB("C:");
  EXPECT_GT(free, 0);
  EXPECT_EQ(FreeDiskSpaceKB("C:/"), free);
  EXPECT_EQ(FreeDiskSpaceKB("?:"), 0);
  const auto count = static_cast<std::size_t>(free * 1024 / INT32_MAX + 1);
  ActionCommand.assign(count, "ADD");
  ActionSize.assign(count, INT32_MAX);
  ActionArg1.resize(count);
  ActionArg2.resize(count);
  EXPECT_EQ(DownloadFiles(), NoDiskSpace);
  EXPECT_TRUE(state.history.empty());
}

}  // namespace
