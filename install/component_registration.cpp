#include "install/component_registration.h"

#include <utility>

#include "install/file_helpers.h"
#include "platform/components.h"
#include "platform/window.h"

namespace modOcxDllReg {
namespace {

namespace components = platform::components;

constexpr std::uint32_t TimeLimit = 10'000;  // milliseconds

/// The hourglass, for as long as this object lives.
class HourglassPointer {
 public:
  HourglassPointer() { platform::window::SetMousePointer(Pointer::Hourglass); }
  ~HourglassPointer() { platform::window::SetMousePointer(Pointer::Default); }
  HourglassPointer(const HourglassPointer&) = delete;
  HourglassPointer& operator=(const HourglassPointer&) = delete;

 private:
  using Pointer = platform::window::MousePointer;
};

}  // namespace

bool RegisterOcxDll(const std::string& path, std::int32_t mode) {
  if (!modFunciones::FileExists(path)) return false;
  components::Library library = components::Load(path);
  if (!library) return false;
  const auto entryPoint = components::FindEntryPoint(
      library, mode == RegisterMode ? "DllRegisterServer" : "DllUnregisterServer");
  if (entryPoint == nullptr) return false;

  const HourglassPointer hourglass;
  const components::Worker worker = components::StartWorker(entryPoint);
  if (!worker) return false;
  const bool ended = components::WaitForEnd(worker, TimeLimit);
  if (!ended) components::LeaveBehind(std::move(library));
  return ended;
}

}  // namespace modOcxDllReg
