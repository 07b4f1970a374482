// Milliseconds that the reading of an update script of so many lines takes: as the program does
// it, or with std::getline and cuts at the bar character.
//   script_reading product LINES
//   script_reading floor LINES
//   script_reading file FILE    that script, as the program does it

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "base/arrays.h"
#include "bench/stopwatch.h"
#include "install/file_helpers.h"
#include "run/run_state.h"
#include "script/action_table.h"
#include "script/parser.h"

namespace {

/// Blocks for other versions than the installed one, and comments.
std::string MakeScript(int lines) {
  constexpr const char* Block[] = {
      "VERSION|>|9.0.0",
      "#What this version brings: new reports, and a mended ledger.",
      "UPDATE|$AppPath\\ledger.exe|http://updates.invalid/ledger/3.0.0/ledger.exe",
      "ADD|$AppPath\\help\\index.txt|http://updates.invalid/ledger/3.0.0/index.txt",
      "DELETE|$AppPath\\oldprint.dll",
      "EXECUTE|$AppPath\\migrate.exe -all|WAIT|HIDE",
      "#",
      "MSG|Ledger has been brought up to date.|INFORMATION",
  };
  std::string script = "1.0.0|http://updates.invalid/Kestrane.exe\r\n";
  for (int i = 0; i < lines; ++i) {
    script += Block[static_cast<std::size_t>(i) % std::size(Block)];
    script += "\r\n";
  }
  return script;
}

bool ReadAsTheProgram(const std::string& script) {
  modPrincipal::ScriptLines = modPrincipal::CutScript(script);
  return modPrincipal::ParseUpdateScript(modPrincipal::ScriptLines).empty() &&
         modFunciones::ElementCount(modPrincipal::ActionCommand) == 0;
}

bool ReadWithGetline(const std::string& script) {
  static std::vector<std::vector<std::string>> lines;  // freed by neither
  std::istringstream text(script);
  for (std::string line; std::getline(text, line);) {
    auto& fields = lines.emplace_back();
    std::size_t from = 0;
    for (auto bar = line.find('|'); bar != std::string::npos; bar = line.find('|', from)) {
      fields.push_back(line.substr(from, bar - from));
      from = bar + 1;
    }
    fields.push_back(line.substr(from));
  }
  return !lines.empty();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return EXIT_FAILURE;
  const std::string mode = argv[1];
  const std::string script =
      mode == "file" ? modFunciones::FileReadAll(argv[2]) : MakeScript(std::stoi(argv[2]));
  modPrincipal::AppVersion = mode == "file" ? "999.0.0" : "2.7.1";
  bool read = false;
  const double time =
      TimeOf([&] { read = mode == "floor" ? ReadWithGetline(script) : ReadAsTheProgram(script); });
  std::printf("%.2f\n", time);
  return read ? EXIT_SUCCESS : EXIT_FAILURE;
}
