// Addresses with https, against the servers that https_server.sh starts.

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/faults.h"
#include "tests/support/program_fixture.h"
#include "transfer/download.h"
#include "transfer/http_probe.h"
#include "transfer/url.h"

namespace {

using namespace modFunciones;

std::string Address(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "(not set)";
}

const std::string good = Address("GOOD");
const std::filesystem::path web = Address("WEB");

void Offer(const std::string& name, const std::string& content) {
  std::ofstream(web / name, std::ios::binary) << content;
}

TEST(Https, TakesOnlyWhatAServerWithAGoodCertificateSends) {
  const auto trust = faults::TrustAuthority(Address("AUTHORITY"));
  Offer("file", "content");
  const struct {
    std::string url;
    bool taken;
  } cases[] = {
      {good + "/file", true},
      {"HTTPS" + good.substr(5) + "/file", true},
      {"Http" + Address("PLAIN").substr(4) + "/file", true},
      {Address("PLAIN") + "/up", true},
      {good + "/down", false},
      {good + "/missing", false},
      {Address("EXPIRED") + "/file", false},
      {Address("FOREIGN") + "/file", false},
      {Address("OTHER_HOST") + "/file", false},
      {"https" + Address("PLAIN").substr(4) + "/file", false},
      {"http" + good.substr(5) + "/file", false},
  };
  for (const auto& [url, taken] : cases) {
    EXPECT_EQ(IsAvailable(url), taken) << url;
    EXPECT_EQ(AvailableLength(url).value_or(0), taken ? 7 : 0) << url;
    // A server's own page about an error is taken as content, and probed for that reason first.
    const std::string body = DownloadUrl(url, "", UserAgentText, PreconfiguredAccess, "");
    EXPECT_EQ(body == "content", taken) << url;
  }
}

TEST_F(Program, RunsOverHttps) {
  const auto trust = faults::TrustAuthority(Address("AUTHORITY"));
  const std::string newer = ReadWhole(OwnFolder() / "newer/Kestrane.exe");
  Offer("Kestrane.exe", newer);
  Offer("file", "content");
  Offer("update.txt", NEWER_VERSION "|" + good +
                          "/Kestrane.exe\nNAME|x\nVERSION|=|2.7.1\nADD|$AppPath\\f|" + good +
                          "/file");
  Run(sandbox.Path("Kestrane.exe"),
      {"2.7.1", "C:\\Ledger", good + "/update.txt", sandbox.Path("kt-app.exe"), "NO"});
  EXPECT_TRUE(Launches());
  EXPECT_EQ(Files(newer), (Tree{{"f", "content"}, {"kt-app.exe.log", "launched\n"}}));
}

}  // namespace
