// The compiler's thread library, which comes with the C++ runtime, imports one function that
// Windows XP lacks. It is only needed for timed waits, which the program does not use, so the
// 32-bit counter stands in for it and the program starts there too.

#include <windows.h>

extern "C" {

static ULONGLONG WINAPI TickCount() { return GetTickCount(); }

extern ULONGLONG(WINAPI* const ImportOfGetTickCount64)() __asm__("__imp__GetTickCount64@0");
ULONGLONG(WINAPI* const ImportOfGetTickCount64)() = TickCount;

}  // extern "C"
