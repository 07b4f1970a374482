// Signed scripts, as the tool makes and judges them, and as the program then takes or refuses them.

#include <gmock/gmock.h>

#include "base/binary_text.h"
#include "base/replace.h"
#include "publish/check.h"
#include "publish/der.h"
#include "publish/key_files.h"
#include "publish/signing.h"
#include "publish/simulate.h"
#include "publish/source.h"
#include "run/messages.h"
#include "run/progress_window.h"
#include "run/run_state.h"
#include "run/update_sequence.h"
#include "script/action_table.h"
#include "script/parser.h"
#include "tests/support/loopback_server.h"
#include "tests/support/sandbox.h"
#include "tests/support/scripted_window.h"

namespace {

using namespace publish;
using namespace modPrincipal;
using modFunciones::ReplaceAll;
using modFunciones::Sha256Text;
using Texts = std::vector<std::string>;

/// Of a public key on a curve, as DER.
constexpr const char* CurveKey =
    "MFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAE5a3ppNQ5f6bh+5Sqh3Sc4o8SuhOAL35FZlCcL8LO73FDAm23nnH6ACma"
    "tIn6w6P7yPnLaMWRrVX5ojRQSjNFJg==";

PrivateKey KeyOf(unsigned bits) { return MakeKey(bits)->key; }
std::string NameOf(const PrivateKey& key) { return FingerprintOf(key.PublicKey()); }

class Signed : public testing::Test {
 protected:
  Signed() {
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
    return "1.0.3|" + server.Url("/f") + "\nNAME|x\nVERSION|<|3.0.0\nUPDATE|" + sandbox.Path("a") +
           "|" + server.Url("/f") + "\nEND\n";
  }
  /// The content with something else in the place of a part, and signed.
  [[nodiscard]] std::string With(const std::string& part, const std::string& instead) const {
    return Sign(ReplaceAll(content, part, instead));
  }
  [[nodiscard]] std::string Sign(const std::string& text) const {
    return text + SignatureLine(text, own);
  }

  /// The message on which the program ends.
  std::string Run(const std::string& script, const std::string& key) {
    server.Serve("/KDvelomar2.txt", {.body = script});
    ResetRunState();
    ResetActionTable();
    ResetScript();
    scripted_window::Reset();
    AppVersion = "2.7.1";
    UpdateInfoUrl = server.Url("/KDvelomar2.txt#key=" + key);
    CheckForUpdate();
    return scripted_window::state.text[frmPrincipal::lblMensaje];
  }

  /// The message that the tool foresees for an installation with an updater of 1.0.3.
  static std::string Foresee(const Script& script, const Origin& origin) {
    const Trust trust = TrustIn(script, origin);
    const Offer offer = SimulateOffer(script, false, trust);
    if (offer.version > "1.0.3" && !offer.failure.empty()) return offer.failure;
    return Simulate(script, "2.7.1", false, trust).finalScreen;
  }

  [[nodiscard]] bool Passes(const Script& script, const Origin& origin) const {
    const Findings findings = Check(script, {"", "", {}, origin, true});
    return std::none_of(findings.begin(), findings.end(),
                        [](const Finding& finding) { return finding.severity == Severity::Error; });
  }

  LoopbackServer server;
  Sandbox sandbox;
  static inline const PrivateKey own = KeyOf(2048);
  static inline const PrivateKey other = KeyOf(2048);
  std::string good;
  std::string content;    // of the good one, above its signature
  std::string signature;  // its line
};

TEST_F(Signed, ToolAndProgramTakeTheSame) {
  const PrivateKey small = KeyOf(1024);
  const std::string curve = *modFunciones::FromBase64(CurveKey);
  const std::string digest = content.substr(content.find("#SHA256|") + 8, 64);
  const std::string url = server.Url("/f");
  const std::string digestLine = "#SHA256|" + digest + "|" + url + "\n";
  const std::string otherDigest(64, '0');
  const auto bar = signature.rfind('|');
  const auto withKey = [&](const std::string& key) {
    return content + "#SIGNATURE|" + key + signature.substr(bar);
  };
  const std::string success(Success);
  const std::string notSigned(NotSigned);
  const std::string notGenuine(NotGenuine);
  const struct {
    std::string what;
    std::string script;
    std::string message;
    std::string key = NameOf(own);
  } cases[] = {
      {"as it was signed", good, success},
      {"two signatures", content + SignatureLine(content, other) + signature, success},
      {"the same twice", good + signature, success},
      {"blank lines, other line ends", content + ReplaceAll(signature, "\n", "\r\n\r\n\n"),
       success},
      {"no line end at the end", good.substr(0, good.size() - 1), success},
      {"capital digits", With(digest, modFunciones::UpperCase(digest)), success},
      {"a digest twice", With("END\n", "END\n" + digestLine), success},
      {"a digest of nothing", With("END\n", "END\n#SHA256|" + digest + "|x\n"), success},
      {"marks that are none", With("END\n", "END\n#sha256|x\n#SIGNATURE\n"), success},
      {"zero bytes", With("END\n", std::string("END\n#\0\n", 7)), success},
      {"Windows line ends", Sign(ReplaceAll(content, "\n", "\r\n")), success},
      {"a byte-order mark",
       With("1.0.3",
            "\xEF\xBB\xBF"
            "1.0.3"),
       std::string(ScriptNotUnderstood)},

      {"unsigned", content, notSigned},
      {"signed by another", content + SignatureLine(content, other), notSigned},
      {"another byte", ReplaceAll(good, "NAME|x", "NAME|y"), notSigned},
      {"signature of another text", content + SignatureLine("x", own), notSigned},
      {"a small key", content + SignatureLine(content, small), notSigned, NameOf(small)},
      {"another algorithm", withKey(CurveKey), notSigned, FingerprintOf(curve)},
      {"a key that is no DER", withKey("AAAA"), notSigned, FingerprintOf({"\0\0\0", 3})},
      {"a key that is no base64", withKey("%%%%"), notSigned},
      {"no key", withKey(""), notSigned},
      {"no signature", content + signature.substr(0, bar + 1), notSigned},
      {"one field", content + signature.substr(0, bar), notSigned},
      {"three fields", good.substr(0, good.size() - 1) + "|x\n", notSigned},
      {"no base64", content + signature.substr(0, bar + 9) + "*" + signature.substr(bar + 10),
       notSigned},
      {"a short signature", content + signature.substr(0, bar + 9), notSigned},
      {"bytes behind the signature", good.substr(0, good.size() - 1) + " ", notSigned},
      {"a bad signature beside a good one", good + "#SIGNATURE|x|\n", notSigned},
      {"a line behind", good + "SLEEP|1\n", notSigned},
      {"a comment behind", good + "#\n", notSigned},
      {"a digest behind", good + digestLine, notSigned},
      {"a blank behind", good + " \n", notSigned},
      {"a zero byte behind", good + std::string(1, '\0'), notSigned},
      {"a signature in the middle", With("END\n", signature + "END\n"), notSigned},
      {"a mark in another column", content + " " + signature, notSigned},
      {"a mark in lower case", content + ReplaceAll(signature, "#SIGN", "#sign"), notSigned},
      {"an old line end before it",
       content.substr(0, content.size() - 1) + "\r" +
           SignatureLine(content.substr(0, content.size() - 1) + "\r", own),
       notSigned},
      {"signatures alone", SignatureLine("", own), notSigned},
      {"63 digits", With(digest, digest.substr(1)), notSigned},
      {"65 digits", With(digest, digest + "0"), notSigned},
      {"no digits", With(digest, otherDigest.substr(1) + "g"), notSigned},
      {"a digest without a URL", With("END\n", "END\n#SHA256|" + digest + "\n"), notSigned},
      {"three fields of a digest", With("END\n", "END\n#SHA256|" + digest + "|x|y\n"), notSigned},
      {"two digests", With("END\n", "END\n#SHA256|" + otherDigest + "|" + url + "\n"), notSigned},
      {"no key that could fit", good, notSigned, ""},
      {"half a key", good, notSigned, NameOf(own).substr(1)},

      {"no digest", Sign(Text()), notGenuine},
      {"another digest", With(digest, otherDigest), notGenuine},
      {"a URL in capitals", With(digest + "|http", digest + "|HTTP"), notGenuine},
      {"an updater without digest", With("1.0.3|" + url, "999.0.0|" + server.Url("/g")),
       notGenuine},
  };
  server.Serve("/g", {.body = "new"});
  for (const auto& [what, script, message, key] : cases) {
    SCOPED_TRACE(what);
    EXPECT_EQ(Run(script, key), message);
    const Script cut = CutWithNumbers(script);
    const Origin origin = {sandbox.Folder("site"), key};
    EXPECT_EQ(Foresee(cut, origin), message);
    EXPECT_EQ(Passes(cut, origin), message == Success);
    const bool isRefused = message == NotSigned;
    EXPECT_EQ(Verdict(cut, key) == NotSigned, isRefused);
  }
  server.Serve("/f", {.body = "NEW"});
  EXPECT_EQ(Run(good, NameOf(own)), NotGenuine);
  EXPECT_FALSE(Passes(CutWithNumbers(good), {{}, NameOf(own)}));
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
  EXPECT_THAT(twice, testing::StartsWith(Text() + "#remark\n#SHA256|"));
  for (const auto& key : {own, other}) {
    EXPECT_EQ(DigestsSignedBy({key}, script), (Digests{{server.Url("/f"), Sha256Text("newer")}}));
  }
  EXPECT_EQ(Run(twice, NameOf(other)), NotGenuine) << "the server still has the former file";

  // A file that is there no longer keeps the digest that was signed; without one nothing is done.
  std::filesystem::remove(sandbox.Folder("site/f"));
  EXPECT_EQ(sign(twice, {{own}, {}, DigestsSignedBy({other}, script)}), Texts{});
  EXPECT_THAT(sandbox.Read("site/update.txt"), testing::HasSubstr(Sha256Text("newer")));
  EXPECT_THAT(sign(good, {{own}, {}, {}}),
              testing::Each(testing::HasSubstr("not beside the script")));
  EXPECT_EQ(sandbox.Read("site/update.txt"), good);
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

  // The same key as PKCS #1.
  const std::string whole = *FromPem(text, "PRIVATE KEY");
  std::string_view der = whole;
  std::string_view info = *TakeElement(der, Tag::Sequence);
  (void)TakeElement(info, Tag::Integer);
  (void)TakeElement(info, Tag::Sequence);
  const std::string pkcs1 = ToPem("RSA PRIVATE KEY", *TakeElement(info, Tag::OctetString));
  std::string why;
  EXPECT_EQ(ReadPrivateKey(pkcs1, why)->PublicKey(), ReadPublicKey(text, why));

  sandbox.Fill({{"site/update.txt", ""}, {"site/sub/key.pem", text}});
  sandbox.Fill({{"locked.pem", ToPem("ENCRYPTED PRIVATE KEY", "x")},
                {"half.pem", ToPem("PRIVATE KEY", whole.substr(0, 700))},
                {"small.pem", MakeKey(1024)->privateFile},
                {"public.pem", sandbox.Read("own.pem.pub")}});
  const struct {
    const char* file;
    const char* problem;
  } cases[] = {
      {"missing.pem", "cannot be read"},         {"locked.pem", "is encrypted"},
      {"half.pem", "holds no private RSA key"},  {"public.pem", "holds no private RSA key"},
      {"small.pem", "holds a key of 1024 bits"}, {"site/sub/key.pem", "keep it elsewhere"}};
  for (const auto& [broken, problem] : cases) {
    problems.clear();
    (void)LoadPrivateKeys({Utf8Of(sandbox.Folder(broken))}, {sandbox.Folder("site")}, problems);
    EXPECT_THAT(problems, testing::ElementsAre(testing::HasSubstr(problem))) << broken;
  }
  for (const auto* place : {"site/new.pem", "site/sub/new.pem", "nowhere/new.pem"}) {
    EXPECT_EQ(MakeKeyFiles(sandbox.Folder(place), problems), "");
    EXPECT_FALSE(sandbox.Has(place));
  }
}

}  // namespace
