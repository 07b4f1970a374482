#include "transfer/availability.h"

#include "base/text.h"
#include "install/path_macros.h"
#include "script/action_table.h"
#include "script/commands.h"
#include "transfer/http_probe.h"
#include "transfer/url.h"

namespace modPrincipal {

bool AddAction(const std::string& command, const std::string& arg1, const std::string& arg2,
               const std::string& arg3) {
  ActionCommand.push_back(modFunciones::UpperCase(command));
  ActionArg1.push_back(modFunciones::ExpandMacros(arg1));
  ActionArg2.push_back(arg2);
  ActionArg3.push_back(arg3);
  ActionSize.push_back(0);

  if (!IsDownload(ActionCommand.back()) || arg2.empty()) {
    modFunciones::UrlParts = modFunciones::SplitUrl(arg2);
    return true;
  }
  const auto length = modFunciones::AvailableLength(arg2);
  ActionSize.back() = length.value_or(0);
  return length.has_value();
}

}  // namespace modPrincipal
