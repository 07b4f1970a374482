#include "script/action_table.h"

namespace modPrincipal {

std::vector<std::string> ActionCommand;
std::vector<std::string> ActionArg1;
std::vector<std::string> ActionArg2;
std::vector<std::string> ActionArg3;
std::vector<std::int32_t> ActionSize;

void ResetActionTable() {
  ActionCommand.clear();
  ActionArg1.clear();
  ActionArg2.clear();
  ActionArg3.clear();
  ActionSize.clear();
}

}  // namespace modPrincipal
