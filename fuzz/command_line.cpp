// A command line: its cutting, and what start-up makes of it and hands on to a successor.

#include "run/command_line.h"
#include "base/arrays.h"
#include "fuzz/fuzz.h"
#include "run/run_state.h"
#include "run/self_replacement.h"
#include "run/startup.h"

namespace {

using namespace modPrincipal;
using List = std::vector<std::string>;

/// Neither blanks, quotes nor backslashes.
std::string Letters(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '"' || c == '\\'; });
  return text;
}

/// The successor's arguments; nothing where a value cannot be handed on, since it holds a quote or
/// ends in a backslash, which would keep its closing quote open.
List SuccessorArguments(const std::string& own) {
  if (AppTitle == "Kestrane") AppTitle.clear();  // left out
  List arguments = {own};
  for (const auto& value : {AppVersion, AppDiskPath, UpdateInfoUrl, LaunchOnFinish,
                            ShowSuccessScreen, AppTitle, AppIconFile}) {
    if (value.find('"') != std::string::npos || value.ends_with('\\')) return {};
    if (!value.empty()) arguments.push_back(value);
  }
  return arguments;
}

}  // namespace

void Fuzz(const std::string& firstLine, const std::string& rest) {
  machine.commandLine = firstLine + rest;
  const List elements = modFunciones::SplitCommandLine();
  for (std::size_t i = 1; i < elements.size(); ++i) {
    Require(!elements[i].empty() && elements[i].find_first_of(" \t") != 0);
  }
  Require(elements[0].starts_with("C:\\Ledger\\Kestrane"));
  Require(Letters(modFunciones::Join(elements, "")) ==
          Letters("C:LedgerKestrane" + firstLine + rest));

  Main();  // and a run, which finds no script
  Require(HadError);
  const List successor = elements.size() < 4 ? List() : SuccessorArguments("own");
  Require(successor.empty() ||
          modFunciones::SplitArguments("own", RelaunchParameters()) == successor);
}
