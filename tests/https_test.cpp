// Addresses with https, against the servers that https_server.sh starts.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "tests/support/faults.h"
#include "transfer/download.h"
#include "transfer/http_probe.h"

namespace {

using namespace modFunciones;

std::string Address(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "(not set)";
}

TEST(Https, TakesOnlyWhatAServerWithAGoodCertificateSends) {
  const auto trust = faults::TrustAuthority(Address("AUTHORITY"));
  std::ofstream(Address("WEB") + "/file") << "content";
  const std::string good = Address("GOOD");
  const std::pair<std::string, bool> cases[] = {
      {good + "/file", true},
      {"HTTPS" + good.substr(5) + "/file", true},
      {Address("PLAIN") + "/up", true},
      {good + "/down", false},
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

}  // namespace
