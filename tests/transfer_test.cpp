// URLs, probes, downloads and hostile servers, against a server on loopback.

#include <gtest/gtest.h>

#include "install/path_macros.h"
#include "platform/system.h"
#include "run/messages.h"
#include "run/run_state.h"
#include "run/update_sequence.h"
#include "script/action_table.h"
#include "script/parser.h"
#include "tests/support/faults.h"
#include "tests/support/loopback_server.h"
#include "tests/support/sandbox.h"
#include "tests/support/scripted_window.h"
#include "tests/support/update_story.h"
#include "transfer/availability.h"
#include "transfer/download.h"
#include "transfer/download_phase.h"
#include "transfer/http_probe.h"
#include "transfer/url.h"

namespace {

using namespace modPrincipal;
using namespace modFunciones;
using scripted_window::state;
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

  /// Runs an update and returns the message of its final screen.
  std::string Update() {
    SetUp();
    ResetScript();
    AppVersion = "2.7.1";
    UpdateInfoUrl = server.Url(UpdateStory::Script);
    CheckForUpdate();
    return state.text[frmPrincipal::lblMensaje];
  }

  static std::string Bytes(std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(i * 7 + i / 256);
    return bytes;
  }

  LoopbackServer server;
  Sandbox sandbox;
};

TEST_F(Transfer, DownloadsWholeBodies) {
  for (const std::size_t size : {0U, 1U, 1023U, 1024U, 1025U, 2048U, 70'000U}) {
    const std::string path = "/" + std::to_string(size);
    server.Serve(path, {.body = Bytes(size), .asked = "GG"});
    EXPECT_EQ(Fetch(server.Url(path)), Bytes(size)) << size;
    sandbox.Write("f", "an older and longer content" + Bytes(3000));
    EXPECT_EQ(Fetch(server.Url(path), sandbox.Path("f")), sandbox.Path("f")) << size;
    EXPECT_EQ(sandbox.Read("f"), Bytes(size)) << size;
  }
  server.Serve("/file", {"page"});
  server.Serve("/error", {.body = "page", .status = "500 Broken", .asked = "G"});
  server.Serve("/moved", {.status = "302 Found", .headers = "Location: /file\r\n"});
  EXPECT_EQ(AvailableLength(server.Url("/moved")), 4);
  EXPECT_EQ(Fetch(server.Url("/moved")) + Fetch(server.Url("/error")), "pagepage");
  for (const std::string url : {"http://127.0.0.1:1/f", "127.0.0.1/f", "", "nonsense"}) {
    EXPECT_EQ(Fetch(url, sandbox.Path("f")), "") << url;
  }
  EXPECT_EQ(sandbox.Read("f"), Bytes(70'000)) << "an address of no use touches no file";
  EXPECT_TRUE(state.text.empty());
  EXPECT_EQ(TotalBytesDone + FileBytesDone, 0);
}

TEST(Progress, IsToldInKilobytesOrMegabytes) {
  const std::string point = platform::system::DecimalSeparator();
  EXPECT_EQ(ProgressText(512, 2560), "0 KB/2 KB");
  EXPECT_EQ(ProgressText(12'288, 9'999'999), "12 KB/9766 KB");
  EXPECT_EQ(ProgressText(0, 10'000'000), "0" + point + "00 MB/9" + point + "54 MB");
  EXPECT_EQ(ProgressText(1'100'000, 5'000'000'000), "1" + point + "05 MB/4768" + point + "37 MB");
}

TEST(System, TellsItsFreeSpaceAndItsFolders) {
  EXPECT_GT(FreeDiskSpaceKB("C:"), 0);
  EXPECT_EQ(FreeDiskSpaceKB("C:/"), FreeDiskSpaceKB("C:"));
  EXPECT_EQ(FreeDiskSpaceKB("?:"), 0);
  EXPECT_NE(GetWindowsDir(), GetSystemDir());
}

TEST_F(Transfer, HostileServersEndInTheRightText) {
  const std::string body(5000, 'k');
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n";
  const std::string chunks = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  const std::string dead = "HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1:1/\r\n\r\n";
  const std::string longHeader = "X: " + std::string(1'048'576, 'x') + "\r\n";
  const Reply circle = {.status = "302 Found", .headers = "Location: /circle\r\n"};
  // Outcomes: a file that is not available, a write failure, success; the systems differ in some.
  struct Case {
    std::string what;
    Reply reply;
    std::string outcomes;       // when HEAD and GET are answered so
    std::string outcomesOfGet;  // when HEAD is answered well, with a length of 5,000
    bool onWine = true;
  };
  std::vector<Case> cases = {
      {"reset before the head", {.raw = "", .resets = true}, "N", "W"},
      {"close before the head", {.raw = ""}, "N", "W"},
      {"reset within the head", {.raw = head.substr(0, 30), .resets = true}, "N", "W"},
      {"close within the head", {.raw = head.substr(0, 30)}, "N", "W"},
      {"garbage", {.raw = "hello\r\n\r\n"}, "N", "W"},
      {"zeros", {.raw = std::string(3000, '\0')}, "N", "W"},
      {"huge status", {.raw = "HTTP/1.1 " + std::string(1'000'000, '2') + "\r\n\r\n"}, "N", "W"},
      {"huge header", {.body = body, .headers = longHeader}, "NS", "WS"},
      {"redirected to a dead host", {.raw = dead}, "N", "W"},
      // Windows counts redirections; Wine does not, and the user has to cancel.
      {"redirected in a circle", circle, "N", "W", false},
      {"reset within the body", {.raw = head + body.substr(0, 2500), .resets = true}, "W", "W"},
      {"longer than announced", {.raw = head + body + "more"}, "SW", "SW"},
      {"chunked", {.raw = chunks + "1388\r\n" + body + "\r\n0\r\n\r\n"}, "N", "S"},
      {"chunked and cut", {.raw = chunks + "1388\r\n" + body.substr(1)}, "N", "W"},
      {"chunked badly", {.raw = chunks + "zz\r\n" + body}, "N", "W"},
      {"negative length", {.body = body, .contentLength = "-1"}, "N", "SW"},
      {"signed length", {.body = body, .contentLength = "+5000"}, "N", "S"},
      {"huge length", {.body = body, .contentLength = "99999999999999999999"}, "N", "S"},
      {"length of 33 bits", {.body = body, .contentLength = "4294972296"}, "N", "W"},
      {"two lengths", {.body = body, .contentLength = "5000\r\nContent-Length: 5000"}, "S", "S"},
      {"5000 and 5", {.body = body, .contentLength = "5000\r\nContent-Length: 5"}, "SW", "SW"},
      {"5 and 5000", {.body = body, .contentLength = "5\r\nContent-Length: 5000"}, "SW", "SW"},
      {"list of lengths", {.body = body, .contentLength = "5000, 5000"}, "N", "SW"},
      {"shorter than HEAD says", {.body = "short"}, "S", "S"},
      {"longer than HEAD says", {.body = body + body}, "S", "S"},
      {"partial", {.body = body, .status = "206 Partial Content"}, "N", "S"},
      {"no length", {.body = body, .contentLength = ""}, "N", "S"},
      {"no length, and shorter than HEAD says", {.body = "short", .contentLength = ""}, "N", "W"},
  };
  for (const std::size_t at : {0U, 1U, 1023U, 1024U, 1025U, 2500U, 4999U}) {
    cases.push_back({"cut at " + std::to_string(at), {.body = body, .cutAt = at}, "W", "W"});
  }
  const std::map<std::string_view, char> letters = {
      {FilesNotAvailable, 'N'}, {WriteFailure, 'W'}, {Success, 'S'}};
  server.ExpectAnything();
  server.Serve("/circle", circle);
  for (const auto& [what, reply, outcomes, outcomesOfGet, onWine] : cases) {
    if (!onWine && faults::OnWine()) continue;
    for (const bool headAnswersWell : {false, true}) {
      SCOPED_TRACE(what + (headAnswersWell ? ", in GET" : ""));
      const Sandbox files;
      const UpdateStory story;
      story.Prepare(server, files);
      server.Serve("/a", reply);
      if (headAnswersWell) server.ServeHead("/a", {.body = body});
      const std::string message = Update();
      auto tree = files.Tree();
      ASSERT_TRUE(letters.contains(message)) << message;
      const char outcome = letters.at(message);
      EXPECT_NE((headAnswersWell ? outcomesOfGet : outcomes).find(outcome), std::string::npos)
          << outcome;
      if (outcome == 'S') {
        EXPECT_EQ(tree["a"], Shown(reply.raw ? body : reply.body));
      } else {
        tree.erase("a.tmp");
        tree.erase("new/b.tmp");
        EXPECT_EQ(tree, story.Before);
      }

      server.Serve(UpdateStory::Script, reply);
      if (headAnswersWell) server.ServeHead(UpdateStory::Script, {.body = body});
      // A head that breaks off behind its first line may still have told the status.
      const std::string ending = Update();
      EXPECT_TRUE(ending == ScriptNotUnderstood ||
                  (!headAnswersWell && ending == InformationNotFound))
          << ending;
    }
  }
}

}  // namespace
