// Signed scripts, as the tool makes and judges them, and as the program then takes or refuses them.

#include <gmock/gmock.h>

#include "base/binary_text.h"
#include "base/replace.h"
#include "base/text.h"
#include "platform/system.h"
#include "publish/check.h"
#include "publish/der.h"
#include "publish/key_files.h"
#include "publish/report.h"
#include "publish/signing.h"
#include "publish/simulate.h"
#include "publish/source.h"
#include "run/messages.h"
#include "tests/support/loopback_server.h"
#include "tests/support/sandbox.h"
#include "tests/support/update_run.h"

namespace {

using namespace publish;
using namespace modPrincipal;
using namespace std::string_literals;
using namespace testing;
using modFunciones::ReplaceAll;
using modFunciones::Sha256Text;
using Texts = std::vector<std::string>;

std::string NameOf(const PrivateKey& key) { return FingerprintOf(key.PublicKey()); }

class Signed : public Test {
 protected:
  Signed() {
    server.ExpectAnything();
    sandbox.Write("site/f", "new");
    server.Serve("/f", {.body = "new"});
    sandbox.Write("site/update.txt", Text());
    Texts problems;
    SignFile(sandbox.Folder("site/update.txt"), {{own}, {}, {}}, problems);
    EXPECT_EQ(problems, Texts{});
    good = sandbox.Read("site/update.txt");
    content = WithoutSignatures(good);
    signature = good.substr(content.size());
  }

  [[nodiscard]] std::string Text() const {
    return "1.0.3|" + server.Url("/f") + "\nNAME|x\nVERSION|<|3.0.0\n!DELETE|" + sandbox.Path("e") +
           "\nUPDATE|" + sandbox.Path("a") + "|" + server.Url("/f") + "\nEND\n";
  }
  /// The content with something else in the place of a part, and signed.
  [[nodiscard]] std::string With(const std::string& part, const std::string& instead) const {
    return Sign(ReplaceAll(content, part, instead));
  }
  static std::string Sign(const std::string& text, const PrivateKey& key = own) {
    return text + SignatureLine(text, key);
  }

  /// The message on which the program ends, which did no more than the message says. fragment: what
  /// stands behind the URL.
  std::string Run(const std::string& script, const std::string& fragment) {
    server.Serve("/KDvelomar2.txt", {.body = script});
    sandbox.Fill({{"a", "old"}, {"e", ""}});
    const std::string message = RunUpdate("2.7.1", server.Url("/KDvelomar2.txt" + fragment));
    EXPECT_EQ(sandbox.Has("e"), message == NotSigned || message == ScriptNotUnderstood);
    EXPECT_EQ(sandbox.Read("a") != "old", message == Success);
    EXPECT_FALSE(sandbox.Has("a.tmp"));
    return message;
  }
  /// The message that the tool foresees for an installation with an updater of 1.0.3.
  static std::string Foresee(const Script& script, const Origin& origin) {
    const Trust trust = TrustIn(script, origin);
    const Offer offer = SimulateOffer(script, false, trust);
    if (offer.version > "1.0.3" && !offer.failure.empty()) return offer.failure;
    return Simulate(script, "2.7.1", false, trust).finalScreen;
  }
  static bool Passes(const Script& script, const Origin& origin) {
    return StatusOf(Check(script, {"", "", {}, origin, true}).findings) < 2;
  }

  LoopbackServer server;
  Sandbox sandbox;
  static inline const PrivateKey own = MakeKey(2048)->key;
  static inline const PrivateKey other = MakeKey(2048)->key;
  std::string good;
  std::string content;    // of the good one, above its signature
  std::string signature;  // its line
};

TEST_F(Signed, ToolAndProgramTakeTheSame) {
  const PrivateKey small = MakeKey(1024)->key;
  const std::string digest = content.substr(content.find("#SHA256|") + 8, 64);
  const std::string url = server.Url("/f");
  const std::string digestLine = "#SHA256|" + digest + "|" + url + "\n";
  const std::string otherDigest(64, '0');
  const std::string newer = "999.0.0|" + server.Url("/g");
  const std::string withoutEnd = good.substr(0, good.size() - 1);
  const std::string open = content.substr(0, content.size() - 1);
  const std::string noUrl = "ADD|" + sandbox.Path("b") + "|\n";
  const auto bar = signature.rfind('|');
  const auto withKey = [&](const std::string& key) {
    return content + "#SIGNATURE|" + key + signature.substr(bar);
  };
  struct Case {
    std::string what;
    std::string script;
    std::string_view message = NotSigned;
    std::string fragment = "#key=" + NameOf(own);
  };
  std::vector<Case> cases = {
      {"no key is named", Text(), Success, ""},
      {"as it was signed", good, Success},
      {"a key in capitals", good, Success, modFunciones::UpperCase("#key=" + NameOf(own))},
      {"two signatures", content + SignatureLine(content, other) + signature, Success},
      {"blank lines", content + ReplaceAll(signature, "\n", "\r\n\r\n\n"), Success},
      {"no line end at the end", withoutEnd, Success},
      {"capital digits", With(digest, modFunciones::UpperCase(digest)), Success},
      {"a digest twice", Sign(content + digestLine), Success},
      {"marks that are none", Sign(content + "#sha256|\n#signature|\n#SIGNATURE\n##SIGNATURE|\n"),
       Success},
      {"zero bytes", Sign(content + std::string("#\0\n", 3)), Success},
      {"Windows line ends", Sign(ReplaceAll(content, "\n", "\r\n")), Success},
      {"a byte-order mark", Sign("\xEF\xBB\xBF" + content), ScriptNotUnderstood},

      {"no key that could fit", good, NotSigned, "#KEY="},
      {"half a key", good, NotSigned, "#key=" + NameOf(own).substr(1)},
      {"blanks behind the key", good, Success, "#key=" + NameOf(own) + " \t"},
      {"two keys", good, NotSigned, "#key=" + NameOf(own) + "#key=" + NameOf(own)},
      {"a small key", Sign(content, small), NotSigned, "#key=" + NameOf(small)},
      {"no DER", withKey("AAAA"), NotSigned, "#key=" + FingerprintOf({"\0\0\0", 3})},
      {"unsigned", content},
      {"another updater, unsigned", ReplaceAll(good, "1.0.3|" + url, newer)},
      {"signed by another", Sign(content, other)},
      {"another byte", ReplaceAll(good, "NAME|x", "NAME|y")},
      {"a short signature", content + signature.substr(0, bar + 9)},
      {"three fields", withoutEnd + "|x\n"},
      {"a signature in the middle", With("END\n", signature + "END\n")},
      {"an old line end before it", Sign(open + "\r")},
      {"signatures alone", SignatureLine("", own)},
      {"63 digits", With(digest, digest.substr(1))},
      {"no digits", With(digest, otherDigest.substr(1) + "g")},
      {"a digest without a URL", Sign(content + "#SHA256|" + digest + "\n")},
      {"three fields of a digest", Sign(content + "#SHA256|" + digest + "|x|y\n")},
      {"two digests", Sign(content + ReplaceAll(digestLine, digest, otherDigest))},

      {"no digest", Sign(Text()), NotGenuine},
      {"another digest", With(digest, otherDigest), NotGenuine},
      {"no digest, behind no URL", Sign(ReplaceAll(Text(), "UPDATE", noUrl + "UPDATE")),
       WriteFailure},
      {"no digest, then no URL", Sign(ReplaceAll(Text(), "END", noUrl + "END")), NotGenuine},
      {"an updater without digest", With("1.0.3|" + url, newer), NotGenuine},
  };
  for (const std::string& behind :
       {"#\n"s, " \n"s, signature, "#SIGNATURE||AAAA\n"s, "#SIGNATURE|AAAA|\n"s,
        "#SIGNATURE|AAAA\n"s, "#SIGNATURE|AA*A|AAAA\n"s, "#SIGNATURE|AAAA|AAAAA\n"s}) {
    cases.push_back({behind, good + behind});
  }
  // Whoever takes it gives it up for its length: this process is not to be replaced.
  server.Serve("/g", {.body = "new"}, Reply{.body = "longer"});
  for (const auto& [what, script, message, fragment] : cases) {
    SCOPED_TRACE(what);
    EXPECT_EQ(Run(script, fragment), message);
    const Script text = CutWithNumbers(script);
    const Origin origin = {sandbox.Folder("site"), modFunciones::NamedKey(fragment)};
    EXPECT_EQ(Foresee(text, origin), message);
    EXPECT_EQ(Passes(text, origin), message == Success);
    EXPECT_EQ(Check(text, {"", "", {}, origin}).verdict == NotSigned, message == NotSigned);
  }
  {
    const auto turn = platform::system::TakeTurn();  // of another run
    EXPECT_EQ(Run(good, "#key=" + NameOf(own)), WriteFailure);
  }
  EXPECT_EQ(Run("", "#key=" + NameOf(own)), ScriptNotUnderstood) << "it did not come";
  const std::pair<Reply, std::string_view> replies[] = {
      {{.body = ""}, NotGenuine},
      {{.body = "new", .cutAt = 2}, WriteFailure},
      {{.body = "NEW"}, NotGenuine},
  };
  for (const auto& [reply, message] : replies) {
    server.Serve("/f", reply);
    EXPECT_EQ(Run(good, "#key=" + NameOf(own)), message) << reply.body;
  }
  EXPECT_FALSE(Passes(CutWithNumbers(good), {{}, NameOf(own)}));
  EXPECT_FALSE(Passes(CutWithNumbers(ReplaceAll(Text(), "/f", "/none")), {}));
  // Where a key is named, files without content are downloaded too.
  const std::string empty = With(digest, Sha256Text(""));
  server.Serve("/f", {.body = ""});
  EXPECT_EQ(Run(empty, "#key=" + NameOf(own)), Success);
  const Script cut = CutWithNumbers(empty);
  EXPECT_EQ(Simulate(cut, "2.7.1", true, TrustIn(cut, {{}, NameOf(own)})).finalScreen, Success);
  EXPECT_EQ(modFunciones::NamedKey("http://u/s#part"), std::nullopt);
  EXPECT_EQ(modFunciones::WithoutKey("http://u/s#part"), "http://u/s#part");
}

TEST_F(Signed, IsSignedAnew) {
  const auto script = sandbox.Folder("site/update.txt");
  const auto sign = [&](const std::string& text, const Signing& signing) {
    sandbox.Write("site/update.txt", text);
    Texts problems;
    SignFile(script, signing, problems);
    return problems;
  };
  // A line of a newer version below the signature, and what was signed has another file.
  sandbox.Write("site/f", "newer");
  EXPECT_EQ(sign(good + "#remark", {{other, own}, {}, {}}), Texts{});
  const std::string twice = sandbox.Read("site/update.txt");
  EXPECT_THAT(twice, StartsWith(Text() + "#remark\n#SHA256|"));
  for (const auto& key : {own, other}) {
    EXPECT_EQ(DigestsSignedBy({key}, script), (Digests{{server.Url("/f"), Sha256Text("newer")}}));
  }
  EXPECT_FALSE(Passes(CutWithNumbers(twice), {{}, NameOf(other)}));  // the server has the old one

  // A file that is there no longer keeps the digest that was signed; without one nothing is done.
  std::filesystem::remove(sandbox.Folder("site/f"));
  EXPECT_EQ(sign(twice, {{own}, {}, DigestsSignedBy({other}, script)}), Texts{});
  EXPECT_THAT(sandbox.Read("site/update.txt"), HasSubstr(Sha256Text("newer")));
  EXPECT_THAT(sign(good, {{own}, {}, {}}), Each(HasSubstr("not beside the script")));
  EXPECT_EQ(sandbox.Read("site/update.txt"), good);
}

// What openssl signed.
constexpr const char* Rsa =
    "MIIBIjANBgkqhkiG9w0BAQEFAAOCAQ8AMIIBCgKCAQEApJciXSa8u2pjFmQovCgFWAmqNFejaxdvE25jCvu696lf/FQ1"
    "GhcHpe+ytQf0rSVZCsw6e3+79779HnupPO3sV6sfqgEgXjk3I5TxrdN+xOfOhxCFRUwqkdcqp4bN9gSUcBc3eXb+wput"
    "WMRIjcnw62wy8TqgCm9rQ2XoYY6D6Fhwv6HJBXHzrEB3vnuryKUi9ZFTZFN14gpb2Q+dy0GcIwLhpyncsR0fO85wk/A8"
    "s0Wc+BCgzOJgtjDFxde36+esNxX/aOWI5duY8fAR9IufawDtdr74v3rRzh8AEM7uUGqa9t75XAser6p7qndoYYpl+HQc"
    "uYG4ysxNZg/heTBfgQIDAQAB";
constexpr const char* RsaSignature =
    "HuxjvLVil2ML4Tmk1+Z0mffDrUcv3Xdzsryce9ohzbkCMbVhz3Otdl1ZdgoQr+BzKqbmeDitE/TfZSwwLNqXOr4tyGBX"
    "wQWzIVtHODwQCal/vW5yLK7iKKy/9vDW40ftRpzNP0fyvyigUegBu8U8gIvk5IaRQEk2F3mE8TIMzg0vkowOkBTSPa2u"
    "+GLhirHUhYNeZQPmW8O2Xqpke36vtcdOAWN07R945g6v4n8WWEAVg/Vbho1e/2rnTgywHUYObeUFcbKqBPneRi5w+s1D"
    "UgbPOjtO1OXPr71nTF8GTEQSOH5ZkSUDK+7Z6yt+vhMSV/wRyfijsxJp23O7LcCVyg==";

TEST(Openssl, SignsWhatTheProgramTakes) {
  const std::string key = *modFunciones::FromBase64(Rsa);
  // The same numbers as a key for the other padding alone.
  const std::string pssKey =
      "\x30\x82\x01\x20\x30\x0B\x06\x09" + key.substr(8, 8) + '\x0A' + key.substr(19);
  for (const auto& der : {key, pssKey}) {
    const std::string line = "#SIGNATURE|" + modFunciones::Base64Text(der) + "|" + RsaSignature;
    const auto digests = modFunciones::SignedDigests("VERSION|<|2.0.0\n" + line, Sha256Text(der));
    EXPECT_EQ(digests.has_value(), der == key) << line;
  }
}

TEST(Keys, AreThoseOfOpensslAndStayPrivate) {
  Sandbox sandbox;
  const auto file = sandbox.Folder("own.pem");
  const std::string name = Utf8Of(file);
  Texts problems;
  const std::string made = MakeKeyFiles(file, problems);
  EXPECT_EQ(problems, Texts{});
  const std::string text = sandbox.Read("own.pem");
  if (std::filesystem::path::preferred_separator == '/') {
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(file).permissions()), 0600U);
  }
  EXPECT_EQ(MakeKeyFiles(file, problems), "");
  EXPECT_EQ(problems.size(), 2U);
  EXPECT_EQ(sandbox.Read("own.pem"), text);
  for (const auto& meant : {name, name + PublicKeySuffix, modFunciones::UpperCase(made)}) {
    EXPECT_EQ(FingerprintMeant(meant, sandbox.Folder("site"), problems), made);
  }

  EXPECT_EQ(Sha256Text(std::string(3'000'000, 'a')),
            "2a152c894398719c0570f83fac34ac03a0f6e8e474b995c2403aa5434f7b9dd4");

  // PKCS #8 has 26 bytes in front of the same key as PKCS #1.
  const std::string whole = *FromPem(text, "PRIVATE KEY");
  const std::string pkcs1 = ToPem("RSA PRIVATE KEY", whole.substr(26));
  std::string why;
  EXPECT_EQ(ReadPrivateKey(pkcs1, why)->PublicKey(), ReadPublicKey(text, why));

  sandbox.Fill({{"site/update.txt", ""},
                {"site/sub/key.pem", text},
                {"locked.pem", ToPem("ENCRYPTED PRIVATE KEY", "x")},
                {"half.pem", ToPem("PRIVATE KEY", whole.substr(0, 700))},
                {"small.pem", MakeKey(1024)->privateFile},
                {"public.pem", sandbox.Read("own.pem.pub")}});
  const std::pair<const char*, const char*> cases[] = {
      {"missing.pem", "cannot be read"},         {"locked.pem", "is encrypted"},
      {"half.pem", "holds no private RSA key"},  {"public.pem", "holds no private RSA key"},
      {"small.pem", "holds a key of 1024 bits"}, {"site/sub/key.pem", "keep it elsewhere"}};
  for (const auto& [broken, problem] : cases) {
    problems.clear();
    (void)LoadPrivateKeys({Utf8Of(sandbox.Folder(broken))}, {sandbox.Folder("site")}, problems);
    EXPECT_THAT(problems, ElementsAre(HasSubstr(problem))) << broken;
  }
  for (const auto* place : {"site/new.pem", "site/sub/new.pem", "nowhere/new.pem"}) {
    problems.clear();
    EXPECT_EQ(MakeKeyFiles(sandbox.Folder(place), problems), "");
    EXPECT_FALSE(sandbox.Has(place));
  }
}

}  // namespace
