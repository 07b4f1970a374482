#include "run/launch.h"

#include "platform/system.h"

namespace modFunciones {
namespace {

constexpr int ShowNormal = 1;  // SW_SHOWNORMAL

}  // namespace

std::int32_t LaunchFile(const std::string& file, const std::string& parameters) {
  return platform::system::OpenWithShell("Open", file, parameters, "C:\\", ShowNormal);
}

}  // namespace modFunciones
