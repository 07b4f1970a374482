#pragma once

// Runs of the program that users get: in a sandbox, against a server on loopback.

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/processes.h"
#include "tests/support/loopback_server.h"
#include "tests/support/sandbox.h"

class Program : public testing::Test {
 protected:
  using Texts = std::vector<std::string>;
  using Tree = std::map<std::string, std::string>;

  void SetUp() override {
    putenv(componentLog.data());
    sandbox.Fill({{"Kestrane.exe", kestrane}, {"kt-app.exe", helper}});
  }
  void TearDown() override {
    Kill();
    static char noLog[] = "KESTRANE_TEST_LOG=";
    putenv(noLog);
  }

  /// Starts a program; each argument goes in quotes onto its command line.
  void Run(const std::string& program, const Texts& arguments) {
    Kill();
    std::string line = '"' + program + '"';
    for (const auto& argument : arguments) line += " \"" + argument + '"';
    run = platform::processes::Start(line, 1);
    ASSERT_TRUE(run) << line;
  }
  /// Starts the program in the sandbox, with arguments from the fourth on.
  void Start(const Texts& further = {}) {
    Texts arguments = {"2.7.1", sandbox.Path("a b"), server.Url("/KDvelomar.txt")};
    arguments.insert(arguments.end(), further.begin(), further.end());
    Run(sandbox.Path("Kestrane.exe"), arguments);
  }
  /// Ends the process, if it has not ended by itself.
  void Kill() {
    if (run) (void)platform::processes::Terminate(run, 1);
    run.reset();
  }
  [[nodiscard]] bool HasEnded() const { return platform::processes::HasEnded(run); }
  [[nodiscard]] bool Ends() const {
    return Eventually([this] { return HasEnded(); });
  }
  /// A whole run without a final screen.
  [[nodiscard]] bool RunsSilently() {
    // The application of the run before may still have its log open.
    const auto log = sandbox.Folder("kt-app.exe.log");
    std::error_code inUse;
    EXPECT_TRUE(Eventually([&] { return !std::filesystem::remove(log, inUse) && !inUse; }));
    Start({sandbox.Path("kt-app.exe"), "no"});
    return Ends() && Eventually([&] { return sandbox.Read("kt-app.exe.log") == "launched\n"; });
  }

  /// asked: as in Reply, for as many runs as follow.
  void ServeScript(const std::string& lines, const std::string& asked = "HG",
                   const std::string& head = "0.0.1|http://updates.invalid/") {
    server.Serve(
        "/KDvelomar2.txt",
        {.body = head + "\r\nNAME|Libro|Mayor\r\nVERSION|<|3.0.0\r\n" + lines, .asked = asked});
  }

  /// What stands beside the program and the application.
  [[nodiscard]] Tree Files() const {
    Tree files = sandbox.Tree();
    EXPECT_EQ(files["Kestrane.exe"], Shown(kestrane));
    EXPECT_EQ(files["kt-app.exe"], Shown(helper));
    files.erase("Kestrane.exe");
    files.erase("kt-app.exe");
    return files;
  }

  const std::string helper = ReadWhole(OwnFolder() / "helper.exe");
  const std::string kestrane = ReadWhole(OwnFolder() / "../Kestrane.exe");
  LoopbackServer server;
  Sandbox sandbox;
  std::string componentLog = "KESTRANE_TEST_LOG=" + sandbox.Path("component.log");
  platform::processes::Process run;
};
