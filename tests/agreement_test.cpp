// Scripts made up at random: the tool foretells what the program does. KESTRANE_SCRIPTS says how
// many.

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "base/replace.h"
#include "base/text.h"
#include "publish/key_files.h"
#include "publish/signing.h"
#include "publish/simulate.h"
#include "script/version.h"
#include "tests/support/loopback_server.h"
#include "tests/support/sandbox.h"
#include "tests/support/scripted_window.h"
#include "tests/support/update_run.h"

namespace {

using namespace publish;
using modPrincipal::Verb;
using Kind = modPrincipal::ArgumentKind;
using Texts = std::vector<std::string>;
using Tree = std::map<std::string, std::string>;
using namespace std::string_literals;

class Agreement : public testing::Test {
 protected:
  std::size_t Below(std::size_t end) { return random() % end; }
  std::string Any(const Texts& texts) { return texts[Below(texts.size())]; }

  std::string Argument(const modPrincipal::Argument& argument) {
    const Texts paths = {"a", "b", "c", "d", "f/g", "f/h/i", "j"};
    const std::string program = '"' + (OwnFolder() / "helper.exe").string() + '"';
    const std::map<Kind, Texts> choices = {
        {Kind::Comparator, {"<", "<=", "=", ">=", ">"}},
        {Kind::Version, {"1.0.0", "2.0.0", "2.7.1.9", "2.7.1", "3.0", "2.7.1"}},
        {Kind::Path, {sandbox->Path(Any(paths))}},
        {Kind::Files, {sandbox->Path(Below(10) == 0 ? "*.bak" : Any(paths))}},
        {Kind::Url, {Below(30) == 0 ? "" : server.Url(Any({"/1", "/22", "/1", "/22", "/empty"}))}},
        {Kind::CommandLine, {"none.exe", program + " append \"" + sandbox->Path("log") + "\" x"}},
        // Without waiting nobody knows when a program ends.
        {Kind::Choice, {"WAIT", "wait", "later"}},
        {Kind::ProcessName, {"kt-none.exe"}},
    };
    const auto texts = choices.find(argument.kind);
    if (texts != choices.end()) return Any(texts->second);
    const auto words = argument.words;
    return words.empty() ? Any({"0", "1", "x"}) : std::string(words[Below(words.size())].word);
  }

  std::string Line() {
    const auto commands = modPrincipal::Commands();
    const auto& command = commands[Below(Below(3) == 0 ? commands.size() : 5)];
    std::string line = (Below(5) == 0 ? "!" : "") + std::string(command.word);
    if (Below(3) == 0) line = modFunciones::LowerCase(line);
    for (const auto& argument : command.Arguments()) {
      if (Below(400) != 0) line += "|" + Argument(argument);
    }
    return Below(40) == 0 ? Any({"", "#", " ", "ADDD|x", "ADD|x|" + server.Url("/gone")}) : line;
  }

  std::string MakeUp() {
    std::string text = "1.0.3|http://updates.invalid/\r\nNAME|x\nVERSION|<=|2.7.1\n";
    for (std::size_t count = 4 + Below(20); count > 0; --count) text += Line() + "\n";
    return text;
  }

  /// Signs a script, perhaps without every digest. Returns what names the key behind a URL.
  std::string Sign(std::string& text) {
    static const PrivateKey key = MakeKey(2048)->key;
    for (const std::string& name : {"1"s, "22"s, "empty"s}) {
      const std::string digest = modFunciones::Sha256Text(name == "empty" ? "" : name);
      if (Below(4) != 0) text += "#SHA256|" + digest + "|" + server.Url("/" + name) + "\n";
    }
    text += SignatureLine(text, key);
    return "#key=" + FingerprintOf(key.PublicKey());
  }

  /// Below the sandbox.
  std::string NameOf(const std::string& path) const {
    const auto root = std::min(sandbox->Path("").size(), path.size());
    return modFunciones::ReplaceAll(path.substr(root), "\\", "/");
  }

  /// Carries out what simulate tells, on names and contents alone.
  void Foretell(const Script& script, const std::string& installed, const Trust& trust) {
    const Outcome outcome = Simulate(script, installed, true, trust);
    finalScreen = outcome.finalScreen;
    files = sandbox->Tree();
    messages.clear();
    for (const auto* path : {"/s", "/1", "/22", "/empty", "/gone"})
      requests[path] = server.Asked(path);
    requests["/s"] += "HG";
    bool goesOn = true;
    Texts gets;  // up to the first that fails
    Tree downloads;
    for (const auto& action : Read(script, {modPrincipal::VersionToNumber(installed)}).actions) {
      const Fields& line = script.lines[action.line];
      if (action.command->effect != modPrincipal::Effect::Download) continue;
      const std::string name = line[2].substr(line[2].rfind('/') + 1);
      if (!name.empty()) requests["/" + name] += name == "gone" ? "H" : "HH";
      if (name == "gone") break;
      if (!goesOn) continue;
      if (!name.empty()) gets.push_back("/" + name);
      goesOn = !name.empty() && !trust.refusedUrls.contains(line[2]);
      const std::string target = NameOf(line[1]) + ".tmp";
      if (goesOn) downloads[target] = name == "empty" ? "" : name;
      if (!goesOn && trust.checksFiles) downloads.erase(target);
    }
    if (outcome.reading.failure.empty() && (outcome.bytes > 0 || trust.checksFiles)) {
      for (const auto& path : gets) requests[path] += "G";
      for (const auto& [name, content] : downloads) files[name] = content;
    }
    for (const auto& action : outcome.reading.actions) {
      if (action.fate == Fate::Done) CarryOut(*action.command, script.lines[action.line]);
    }
  }

  void CarryOut(const modPrincipal::Command& command, const Fields& line) {
    const std::string name = NameOf(line[1]);
    if (command.verb == Verb::Message) messages.push_back(line[1]);
    if (command.verb == Verb::Execute && line[1].ends_with(" x")) files["log"] += "x\n";
    if (command.verb == Verb::Delete) {
      std::erase_if(files, [&](const auto& file) {
        return file.first == name ||
               (name == "*.bak" && file.first[0] != 'f' && file.first.ends_with(".bak"));
      });
    }
    if (command.effect != modPrincipal::Effect::Download) return;
    if (command.verb == Verb::Add && files.contains(name)) files[name + ".bak"] = files[name];
    files[name] = files[name + ".tmp"];
    files.erase(name + ".tmp");
  }

  std::minstd_rand random;
  LoopbackServer server;
  std::unique_ptr<Sandbox> sandbox;
  std::string finalScreen;
  Tree files;
  std::map<std::string, std::string> requests;  // by path, with those of the tool before
  Texts messages;
};

TEST_F(Agreement, HoldsForScreensRequestsAndFiles) {
  const char* const wanted = std::getenv("KESTRANE_SCRIPTS");
  server.ExpectAnything();
  for (const char* content : {"1", "22"}) server.Serve("/"s + content, {content});
  server.Serve("/empty", {});
  server.Serve("/gone", {.status = "404 Not Found"});
  std::map<std::string, int> met;
  for (int i = wanted != nullptr ? std::atoi(wanted) : 100; i > 0; --i) {
    sandbox = std::make_unique<Sandbox>();
    sandbox->Fill({{"a", "old"}, {"b", "old"}, {"b.bak", "older"}, {"f/g", "old"}});
    std::string text = MakeUp();
    const std::string fragment = Below(2) == 0 ? Sign(text) : "";
    server.Serve("/s", {text});
    const std::string installed = Any({"1.0.0", "2.7.1", "2.7.1", "none"});
    const Script script = CutWithNumbers(text);
    Foretell(script, installed, TrustIn(script, {{}, modFunciones::NamedKey(fragment)}));
    EXPECT_EQ(RunUpdate(installed, server.Url("/s" + fragment)), finalScreen);
    for (const auto& [path, asked] : requests) EXPECT_EQ(server.Asked(path), asked) << path;
    EXPECT_EQ(sandbox->Tree(), files);
    Texts shown;
    for (const auto& event : scripted_window::state.history) {
      if (event.starts_with("box ")) shown.push_back(event.substr(event.rfind('|') + 1));
    }
    EXPECT_EQ(shown, messages);
    ++met[finalScreen];
    if (HasFailure()) FAIL() << installed << "\n" << text;
  }
  EXPECT_GE(met.size(), 6U);
}

}  // namespace
