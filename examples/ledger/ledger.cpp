// The sample application: each start leaves a line in ledger.log, beside the program.

#include <filesystem>
#include <fstream>
#include <string_view>

int main(int argc, char* argv[]) {
  const bool migrate = argc > 1 && std::string_view(argv[1]) == "/migrate";
  const std::filesystem::path program = argv[0];
  std::ofstream log(program.parent_path() / "ledger.log", std::ios::app | std::ios::binary);
  log << (migrate ? "Ledger " LEDGER_VERSION " migrated its data\n"
                  : "Ledger " LEDGER_VERSION " was started\n");
  return log.flush() ? 0 : 1;
}
