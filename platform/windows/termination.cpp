// The C++ runtime's last resort, in the place of its own, which writes to a console that there is
// none of and brings a tenth of the program's size along.

#include <windows.h>

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): names of the runtime's own
namespace __gnu_cxx {

[[noreturn]] void __verbose_terminate_handler();

void __verbose_terminate_handler() {
  FatalAppExitA(0, "Kestrane");  // the system's message, and the end of the process
  ExitProcess(1);
}

}  // namespace __gnu_cxx
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
