// A component library that tells the file named by the environment when it is registered. Built as
// SLOW it takes longer than anyone waits, and cannot be unregistered.

#include <windows.h>

#include <cstdlib>
#include <fstream>

static HRESULT Tell(const char* text) {
  std::ofstream(std::getenv("KESTRANE_TEST_LOG"), std::ios::app) << text << '\n';
  return E_FAIL;  // what an entry point returns is not looked at
}

extern "C" {

__declspec(dllexport) HRESULT WINAPI DllRegisterServer() {
#ifdef SLOW
  Sleep(30'000);
#endif
  return Tell("registered");
}

#ifndef SLOW
__declspec(dllexport) HRESULT WINAPI DllUnregisterServer() {
  return Tell("unregistered");
}
#endif

}  // extern "C"
