#include "run/launch.h"

#include "platform/system.h"

namespace modFunciones {
namespace {

constexpr int ShowNormal = 1;  // SW_SHOWNORMAL

}  // namespace

std::int32_t LaunchFile(std::string_view file, std::string_view parameters) {
  return platform::system::OpenWithShell("Open", file, parameters, "C:\\", ShowNormal);
}

}  // namespace modFunciones
