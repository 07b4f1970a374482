// Keys and signatures, as the system knows them.

#include <gtest/gtest.h>

#include "base/binary_text.h"
#include "base/text.h"
#include "platform/system.h"
#include "run/run_state.h"
#include "transfer/publisher_check.h"

namespace {

using namespace modPrincipal;
using namespace modFunciones;

// Signed by three keys that openssl made, one of them with another padding, too.
const std::string content =
    "1.0.0|http://u/K.exe\r\n"
    "#SHA256|0000000000000000000000000000000000000000000000000000000000000007|http://u/a\n"
    "VERSION|<|2.0.0\nUPDATE|a|http://u/a\n";
const std::string fingerprint = "bc8cc08287e6a10aacbf9af4e72db0ceaa77b07fe1da449233607d3d53eea7d9";
constexpr std::string_view Rsa2048 =
    "MIIBIjANBgkqhkiG9w0BAQEFAAOCAQ8AMIIBCgKCAQEAtizAEGswPLPzZrPe1/e5qWLjcITfq7I4BxDYk8hnzqIBkw"
    "crzOAnCvMMQkq8ShZkrawONuoSk6SPDPtC3bjZqXre8scMIyQJ1XN6COkzNNBwqM+xFmCWiuAYKGR7l6siXnq41CCb"
    "3dUHSNYI0vtRsmW3OsqHvKL+Jl5iv1yDw1yBsL5R9EDdH/XYXz97SuCNTicDrgYt5N5IyxqrE77g7nyk4cRtVwiHHJ"
    "D19zrchRJGIsOWEBLAEZG118R4Tj+7EOKz0oT6kbN3IWUqQc87r8Vo4EcJ4/c3Yrq7ctjX/bp+ACVkTNg5L/CzcMGK"
    "T1VJPCWKEnGGi+0XISl6lb3ozwIDAQAB";
constexpr std::string_view Rsa2048Signature =
    "pX4nj54fLefyjoAYecLauSc7+6TJU4tq5WImsGVmI8/CvQKI9wVx3yfaQD0VaXdEGHNo7Qxs20L6P/uKDiExpdO/qy"
    "r6d99L6eXMicnDIt7Rdhj9kr9KfelDPOzCJG634mp9FgYExdqkhXYiIJNm/QoGdOo0/10A+TXY/po1Bg2xN5/sspel"
    "W2ggt6nADGu0LhZtRdIeM48x6tRghno4ynWJVZE/FdGhfnODoXzg2+NR5teFnAYxzX+YABNeQ3nIvOGOI5TaFj5A6M"
    "XguyTeIL3LG2wowx8vpXwmlLxtpDurXbKJBIq27kMvWdK+x1S8iDOI6SS0S6sGdt/AjC0rPQ==";
constexpr std::string_view PssSignature =
    "c6sx2loqxRI3tc7cdwR1tY5ewxQ5+WAuu3QyKptUl508YTMAAKiyXpG6eRLMepkuLuhZvaE73t/0NiG07vVxuZpiPF"
    "53u1fH7Bg8Z22x2sr6Tt2RiuBfTTlhnQtMC0qvEbByRKpR75jbIX6hrG1bwJwIH7sckH+jIvRRBFKItw5XYgvMHhxD"
    "aObPMwBaU8iBduTy0VTwOQA8AwfUAUXE6SIeuSL8iIrlXJrNPdWd1TohWj6YvdmBRcYLlgm7xjEhOXjYTWMqFReqVW"
    "FsCUIzizJdky1Dd8gg6byfkBWiVBGf3DlZzPbh9mJbddwD/X2TLhsCTjh/328HZvlqN9sVKQ==";
constexpr std::string_view Rsa1024 =
    "MIGfMA0GCSqGSIb3DQEBAQUAA4GNADCBiQKBgQDScU3LFFkY0wgeiiwcyXux5y8xKgBJV0/4PmFlayvAa+bd3v2DzL"
    "PEnbKxQEpbSPcAfu9PdkWYaFiJxuZ808/YAEs7jB7iokxeMw0kPPbR0g+tl6adl1kiJZ0hcrFAcXlr3T2QGfdqe8TH"
    "/RYWSZ6rPq1oISStq2MB425YrU3qCQIDAQAB";
constexpr std::string_view Rsa1024Signature =
    "rSdbLZTwcImvZyGoV7c9CPZnMSlXOV4WIXtb9xo/aaJJkH0Y4k7Qsoccf6lgLqJA8stFlROxMdWD2ySRe9M0P3EFJW"
    "kBSvVXFEfZH8PiVmn0H/CzhOC+cRm1zJSVwrBE4NLwuq1f0zwaSS6WyHEfsrOrbmJJbbqDFesxgVBs4G8=";
constexpr std::string_view Curve =
    "MFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAEUGHgxWpuIaSZm5hxn7ZIbQcthtnXCicKkhx2XTWkUvY7hbiOQ7h2OB"
    "yfCA844Q8PbcA7eGm+ShN46fEH2m5bCw==";
constexpr std::string_view CurveSignature =
    "MEUCICvXYmZQShkZwYwm9vENkGaLCJHTeonfq5Fmd1WdgQnKAiEArswfMqWgaBqE4wRDKPOSO2ZvukXszlHB4HwWdT"
    "CP2Dg=";

std::string Signature(std::string_view key, std::string_view signature) {
  return "#SIGNATURE|" + std::string(key) + "|" + std::string(signature) + "\n";
}

TEST(SignedScript, IsAcceptedWhenOneSignatureFits) {
  const std::string good = Signature(Rsa2048, Rsa2048Signature);
  const std::string other = Signature(Rsa1024, Rsa1024Signature);
  const std::string withoutEnd = good.substr(0, good.size() - 1);
  const Digests digests = {{"http://u/a", std::string(63, '0') + "7"}};
  for (const std::string& signatures : {good, withoutEnd, withoutEnd + "\r\n\r\n\n", other + good,
                                        good + other, Signature("bm8ga2V5", "bm8=") + good}) {
    EXPECT_EQ(SignedDigests(content + signatures, fingerprint), digests) << signatures;
  }

  const std::string flipped =
      (Rsa2048Signature[0] == 'A' ? "B" : "A") + std::string(Rsa2048Signature.substr(1));
  for (const std::string& script : {
           content,
           good,
           content + other,
           content + Signature(Rsa2048, flipped),
           content + Signature(Rsa2048, Rsa1024Signature),
           content + Signature(Rsa2048, PssSignature),
           content + Signature(Rsa2048.substr(4), Rsa2048Signature),
           content + "!" + good,
           content.substr(1) + good,
           content + "\n" + good,
           content + '\0' + good,
           content.substr(0, content.size() - 1) + good,  // no line of its own
           content + good + "UPDATE|b|http://u/b\n",
           content + good + good,
           content + good + "#\n",
           content + good + '\0',
           content + good + " ",
           content + good + "\r\r\n",
           content + withoutEnd + "|\n",
           content + withoutEnd + "=\n",
           content + good + "#SIGNATURE|\n",
           content + good + "#SIGNATURE||\n",
           content + good + "#SIGNATURE|bm8ga2V5|bm8\n",
           content + "#signature|" + good.substr(11),
       }) {
    EXPECT_EQ(SignedDigests(script, fingerprint), std::nullopt) << script;
  }
  for (const auto& [key, signature] :
       {std::pair(Rsa1024, Rsa1024Signature), {Curve, CurveSignature}, {"bm8ga2V5", "bm8="}}) {
    const std::string named = Sha256Text(*FromBase64(key));
    EXPECT_EQ(SignedDigests(content + Signature(key, signature), named), std::nullopt) << key;
  }
}

TEST(SignedScript, IsCheckedByTheKeyBehindItsUrl) {
  const struct {
    std::string url, address;
    std::optional<std::string> key;
  } cases[] = {
      {"http://u/s.txt", "http://u/s.txt", std::nullopt},
      {"http://u/s.txt#part", "http://u/s.txt#part", std::nullopt},
      {"http://u/s.txt#key=AbC1", "http://u/s.txt", "abc1"},
      {"http://u/s.txt#KEY=", "http://u/s.txt", ""},
      {"http://u/s#key=0#key=1", "http://u/s", "0#key=1"},
  };
  const std::string script = content + Signature(Rsa2048, Rsa2048Signature);
  for (const auto& [url, address, key] : cases) {
    EXPECT_EQ(WithoutKey(url), address);
    EXPECT_EQ(NamedKey(url), key) << url;
    UpdateInfoUrl = url;
    EXPECT_EQ(AcceptScript(script), !key.has_value()) << url;
  }
  for (const char* end : {"0", "#key=", " x"}) {
    UpdateInfoUrl = "http://u/s#key=" + fingerprint + end;
    EXPECT_FALSE(AcceptScript(script)) << end;
  }
  UpdateInfoUrl = "http://u/s#key=" + UpperCase(fingerprint) + " \t";
  EXPECT_TRUE(AcceptScript(script) && PublishedDigests);
  UpdateInfoUrl = "http://u/s";
  EXPECT_TRUE(AcceptScript("no script") && !PublishedDigests);

  EXPECT_EQ(Sha256Text(std::string(1'000'000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Turn, IsOneProcessAtATime) {
  auto turn = platform::system::TakeTurn();
  EXPECT_TRUE(turn);
  EXPECT_FALSE(platform::system::TakeTurn());
  turn.reset();
  EXPECT_TRUE(platform::system::TakeTurn());
}

}  // namespace
