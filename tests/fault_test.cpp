// Updates in which a file operation fails, or the process dies in it.

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/processes.h"
#include "platform/system.h"
#include "run/messages.h"
#include "run/progress_window.h"
#include "run/run_state.h"
#include "run/update_sequence.h"
#include "script/action_table.h"
#include "script/parser.h"
#include "tests/support/faults.h"
#include "tests/support/faulty_files.h"
#include "tests/support/scripted_window.h"
#include "tests/support/update_story.h"

namespace {

using Tree = UpdateStory::Tree;

/// Runs the update sequence and returns the message of its final screen.
std::string Update(const std::string& url, std::size_t faultAt = 0, bool dies = false) {
  faulty_files::state = {.faultAt = faultAt, .dies = dies};
  modPrincipal::ResetRunState();
  modPrincipal::ResetActionTable();
  modPrincipal::ResetScript();
  scripted_window::Reset();
  modPrincipal::AppVersion = "2.7.1";
  modPrincipal::UpdateInfoUrl = url;
  modPrincipal::CheckForUpdate();
  return scripted_window::state.text[frmPrincipal::lblMensaje];
}

class Faults : public testing::Test {
 protected:
  void Prepare() {
    sandbox = std::make_unique<Sandbox>();
    story.Prepare(server, *sandbox);
  }
  [[nodiscard]] std::string Script() const { return server.Url(UpdateStory::Script); }

  const UpdateStory story;
  LoopbackServer server;
  std::unique_ptr<Sandbox> sandbox;
};

TEST_F(Faults, DeathAnywhereLosesNothingAndTheNextRunCompletesTheUpdate) {
  std::size_t deaths = 0;
  Tree previous;
  for (std::uint32_t exitCode = faulty_files::Died; exitCode == faulty_files::Died;) {
    Prepare();
    const auto child = platform::processes::Start('"' + platform::system::ExecutableFolder() +
                                                      "\\fault_tests.exe\" die " + Script() + " " +
                                                      std::to_string(++deaths),
                                                  1);
    ASSERT_TRUE(child);
    ASSERT_TRUE(Eventually([&] { return platform::processes::HasEnded(child); }));
    ASSERT_TRUE(platform::processes::ExitCode(child, exitCode));
    SCOPED_TRACE("operation " + std::to_string(deaths));
    EXPECT_TRUE(exitCode == 0 || exitCode == faulty_files::Died) << exitCode;
    const Tree left = sandbox->Tree();
    if (left == previous) continue;  // and so would the next run be
    previous = left;
    story.ExpectNothingLost(left);
    EXPECT_EQ(Update(Script()), modPrincipal::Success);
    EXPECT_EQ(sandbox->Tree(), story.AfterOnceMore(left));
  }
  EXPECT_GT(deaths, 40U);
}

TEST_F(Faults, FailureOfAnyOperationEndsAsItShould) {
  using modPrincipal::WriteFailure;
  /// An operation that matters: the outcome when it fails, and what changes when it does not.
  struct Step {
    std::string operation;
    std::string_view outcome;
    Tree changes = {};  // empty: gone
  };
  std::vector<Step> steps = {{"QueryDiskSpace ", modPrincipal::NoDiskSpace}};
  for (const std::string path : {"a", "new/b", "c", "d"}) {
    const std::string name = path.substr(path.size() - 1);
    const std::string companion = name + ".tmp";
    if (path == "new/b") steps.push_back({"CreateFolder ", WriteFailure});
    steps.push_back({"Create " + companion, WriteFailure, {{path + ".tmp", "ne"}}});
    steps.push_back({"Write " + companion, WriteFailure, {{path + ".tmp", "new " + name}}});
    steps.push_back({"Close " + companion, WriteFailure});
  }
  steps.insert(steps.end(),
               {{"Find a", WriteFailure},
                {"CanBeRenamed a.tmp", WriteFailure},
                {"Find a.bak", WriteFailure},
                {"Delete a.bak", WriteFailure, {{"a.bak", ""}}},
                {"Rename a", WriteFailure, {{"a", ""}, {"a.bak", "old a"}}},
                {"Rename a.tmp", WriteFailure, {{"a", "new a"}, {"a.tmp", ""}}},
                {"Rename b.tmp", WriteFailure, {{"new/b", "new b"}, {"new/b.tmp", ""}}},
                {"CanBeRenamed c.tmp", WriteFailure},
                {"Find c", WriteFailure},
                {"Delete c", WriteFailure, {{"c", ""}}},
                {"Rename c.tmp", WriteFailure, {{"c", "new c"}, {"c.tmp", ""}}},
                {"Find e", modPrincipal::Success},
                {"Delete e", modPrincipal::DeleteFailure, {{"e", ""}}},
                {"CanBeRenamed d.tmp", WriteFailure},
                {"Rename d.tmp", WriteFailure, {{"d", "new d"}, {"d.tmp", ""}}}});

  Prepare();
  (void)server.TakeRequests();
  EXPECT_EQ(Update(Script()), modPrincipal::Success);
  const auto operations = faulty_files::state.operations;
  // What each row costs, by its file; one more is felt a thousand times in a large update.
  std::map<char, int> costs;
  for (const auto& operation : operations) ++costs[operation[operation.find(' ') + 1]];
  costs.erase('\0');  // folders
  EXPECT_EQ(costs, (std::map<char, int>{{'a', 10}, {'b', 6}, {'c', 8}, {'d', 7}, {'e', 2}}));
  EXPECT_EQ(server.TakeRequests().size(), 2U + 3U * 4U);
  auto next = steps.begin();
  Tree left = story.Before;
  for (std::size_t at = 1; at <= operations.size(); ++at) {
    SCOPED_TRACE(operations[at - 1]);
    Prepare();
    const std::string message = Update(Script(), at);
    EXPECT_EQ(faulty_files::state.openFiles, 0);
    const bool matters = next != steps.end() && next->operation == operations[at - 1];
    EXPECT_EQ(message, matters ? next->outcome : modPrincipal::Success);
    const bool goesOn = !matters || next->operation.ends_with(" e");  // without that file
    Tree expected = goesOn ? story.After() : left;
    if (matters && goesOn) expected["e"] = "old e";
    EXPECT_EQ(sandbox->Tree(), expected);
    if (!matters) continue;
    for (const auto& [name, content] : next->changes) left[name] = content;
    std::erase_if(left, [](const auto& file) { return file.second.empty(); });
    ++next;
  }
  EXPECT_TRUE(next == steps.end()) << next->operation << " did not come";
}

TEST_F(Faults, HostileServersEndInTheRightText) {
  using namespace modPrincipal;
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
  server.Serve("/circle", circle);
  for (const auto& [what, reply, outcomes, outcomesOfGet, onWine] : cases) {
    if (!onWine && faults::OnWine()) continue;
    for (const bool headAnswersWell : {false, true}) {
      SCOPED_TRACE(what + (headAnswersWell ? ", in GET" : ""));
      Prepare();
      server.Serve("/a", reply);
      if (headAnswersWell) server.ServeHead("/a", {.body = body});
      const std::string message = Update(Script());
      Tree tree = sandbox->Tree();
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
      const std::string ending = Update(Script());
      EXPECT_TRUE(ending == ScriptNotUnderstood ||
                  (!headAnswersWell && ending == InformationNotFound))
          << ending;
    }
  }
}

TEST_F(Faults, AMissingUpdaterIsToldBeforeAScriptThatOnlyItUnderstands) {
  server.Serve("/info.txt", {.body = "9.0.0|" + server.Url("/missing") + "\nEND\nEND\nKILL"});
  EXPECT_EQ(Update(server.Url("/info.txt")), modPrincipal::UpdaterNotAvailable);
}

TEST_F(Faults, RunningOutOfMemoryIsTheFailureOfWhatAskedForIt) {
  using namespace modPrincipal;
  Prepare();
  std::string lines;
  for (int i = 0; i < 150'000; ++i) lines += "x\n";
  std::string name = "1.0.3|x\nNAME";  // put together at the cost of twice its length
  for (int i = 0; i < 5; ++i) name += '|' + std::string(104'000, 'x');
  name += "\nVERSION|<|3.0.0\nDELETE|" + sandbox->Path("e");
  // The path is put together with ".tmp".
  const std::string path =
      "1.0.3|x\nNAME|x\nVERSION|<|3.0.0\nADD|" + std::string(390'000, 'x') + "|" + server.Url("/a");
  const std::pair<std::string, std::string_view> cases[] = {
      {std::string(3'000'000, 'x'), ScriptNotUnderstood},
      {lines, ScriptNotUnderstood},
      {name, ScriptNotUnderstood},
      {path, WriteFailure},
  };
  for (const auto& [script, message] : cases) {
    server.Serve(UpdateStory::Script, {script});
    const std::string url = Script();
    faulty_files::largestAllocation = 700'000;
    EXPECT_EQ(Update(url), message) << script.substr(0, 50);
    faulty_files::largestAllocation = SIZE_MAX;
  }
  EXPECT_EQ(sandbox->Tree(), story.Before);
}

}  // namespace

/// fault_tests die URL NUMBER runs an update that dies in the operation of that number.
int main(int argc, char** argv) {
  if (argc == 4 && argv[1] == std::string("die")) {
    return Update(argv[2], std::strtoul(argv[3], nullptr, 10), true) == modPrincipal::Success ? 0
                                                                                              : 1;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
