// URLs, probes, downloads and hostile servers, against a server on loopback.

#include <gtest/gtest.h>

#include "install/path_macros.h"
#include "platform/system.h"
#include "run/messages.h"
#include "tests/support/faults.h"
#include "tests/support/loopback_server.h"
#include "tests/support/update_run.h"
#include "tests/support/update_story.h"
#include "transfer/download.h"
#include "transfer/download_phase.h"
#include "transfer/url.h"

namespace {

using namespace modPrincipal;
using namespace modFunciones;
using Texts = std::vector<std::string>;

TEST(Url, IsSplitIntoHostPortAndPath) {
  const std::map<std::string, Texts> cases = {
      {"server:8080", {"server", "8080", "/"}},
      {"HTTP://server/dir/http://x", {"server", "80", "/dir/x"}},
      {"https://server", {"server", "443", "/", "https"}},
      {"hTTpS://server:81/http://x", {"server", "81", "/http://x", "https"}},
      {"ftp://server/a", {"ftp", "", "//server/a"}},
      {"http://", {}},
      {"http://server/a:b", {}},
  };
  for (const auto& [url, parts] : cases) EXPECT_EQ(SplitUrl(url), parts) << url;
  EXPECT_EQ(PortNumber("0"), 0);
  EXPECT_EQ(PortNumber("32767"), 32767);
  for (const char* text : {"", "x", "-1", "+80", "80 ", "32768", "65616", "4294967376"}) {
    EXPECT_EQ(PortNumber(text), std::nullopt) << text;
  }
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

TEST(Transfer, EndsInTheRightTextWhateverAServerAnswers) {
  LoopbackServer server;
  std::string body(5000, '\0');
  std::ranges::generate(body, [n = 0]() mutable { return static_cast<char>((n += 7) % 251); });
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n";
  const std::string chunks = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  const std::string longHeader = "X: " + std::string(1'048'576, 'x') + "\r\n";
  const auto moved = [&body](const std::string& to) {
    return Reply{.body = body, .status = "302 Found", .headers = "Location: " + to + "\r\n"};
  };
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
      {"close within the head", {.raw = head.substr(0, 30)}, "N", "W"},
      {"garbage", {.raw = "hello\r\n\r\n"}, "N", "W"},
      {"huge status", {.raw = "HTTP/1.1 " + std::string(1'000'000, '2') + "\r\n\r\n"}, "N", "W"},
      {"huge header", {.body = body, .headers = longHeader}, "NS", "WS"},
      {"redirected", moved("/moved"), "S", "S"},
      {"redirected to a dead host", moved("http://127.0.0.1:1/"), "N", "W"},
      // Windows counts redirections; Wine does not, and the user has to cancel.
      {"redirected in a circle", moved("/circle"), "N", "W", false},
      {"reset within the body", {.raw = head + body.substr(0, 2500), .resets = true}, "W", "W"},
      {"longer than announced", {.raw = head + body + "more"}, "SW", "SW"},
      {"chunked", {.raw = chunks + "1388\r\n" + body + "\r\n0\r\n\r\n"}, "N", "S"},
      {"chunked and cut", {.raw = chunks + "1388\r\n" + body.substr(1)}, "N", "W"},
      {"negative length", {.body = body, .contentLength = "-1"}, "N", "SW"},
      {"huge length", {.body = body, .contentLength = "99999999999999999999"}, "N", "S"},
      {"length of 33 bits", {.body = body, .contentLength = "4294972296"}, "N", "W"},
      {"5000 and 5", {.body = body, .contentLength = "5000\r\nContent-Length: 5"}, "SW", "SW"},
      {"list of lengths", {.body = body, .contentLength = "5000, 5000"}, "N", "SW"},
      {"longer than HEAD says", {.body = body + body}, "S", "S"},
      {"an error's own page", {.body = body, .status = "500 Broken"}, "N", "S"},
      {"to be had later", {.body = body, .status = "202 Accepted"}, "N", "S"},
      {"no length", {.body = body, .contentLength = ""}, "N", "S"},
      {"no length, and shorter than HEAD says", {.body = "short", .contentLength = ""}, "N", "W"},
  };
  for (const std::size_t at : {0U, 1U, 1024U, 4999U}) {
    const std::string whole = body.substr(0, at);
    cases.push_back({"cut at " + std::to_string(at), {.body = body, .cutAt = at}, "W", "W"});
    cases.push_back({"whole at " + std::to_string(at), {.body = whole}, "S", "S"});
  }
  const std::map<std::string_view, char> letters = {
      {FilesNotAvailable, 'N'}, {WriteFailure, 'W'}, {Success, 'S'}};
  server.ExpectAnything();
  server.Serve("/circle", moved("/circle"));
  server.Serve("/moved", {.body = body});
  for (const auto& [what, reply, outcomes, outcomesOfGet, onWine] : cases) {
    if (!onWine && faults::OnWine()) continue;
    for (const auto& toHead : {std::optional<Reply>(), std::optional(Reply{.body = body})}) {
      SCOPED_TRACE(what + (toHead ? ", in GET" : ""));
      const Sandbox files;
      const UpdateStory story;
      story.Prepare(server, files);
      server.Serve("/a", reply, toHead);
      const std::string message = RunUpdate("2.7.1", server.Url(UpdateStory::Script));
      auto tree = files.Tree();
      ASSERT_TRUE(letters.contains(message)) << message;
      const char outcome = letters.at(message);
      EXPECT_NE((toHead ? outcomesOfGet : outcomes).find(outcome), std::string::npos) << outcome;
      if (outcome == 'S') {
        EXPECT_EQ(tree["a"], Shown(reply.raw ? body : reply.body));
      } else {
        tree.erase("a.tmp");
        tree.erase("new/b.tmp");
        EXPECT_EQ(tree, story.Before);
      }

      server.Serve(UpdateStory::Script, reply, toHead);
      // A head that breaks off behind its first line may still have told the status.
      const std::string ending = RunUpdate("2.7.1", server.Url(UpdateStory::Script));
      EXPECT_TRUE(ending == ScriptNotUnderstood || (!toHead && ending == InformationNotFound))
          << ending;
    }
  }
}

}  // namespace
