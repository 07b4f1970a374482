// A component library that tells the file named by KESTRANE_TEST_LOG when it is loaded and when it
// is registered. On Windows it then needs COM, and loads neighbours by their names where there are
// some. Built as SLOW it takes longer than anyone waits, and on Windows keeps others from loading
// libraries meanwhile.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#ifdef _WIN32
#include <objbase.h>
#endif

static int Tell(const char* text) {
  const char* log = std::getenv("KESTRANE_TEST_LOG");
  std::string path = log != nullptr ? log : "";
  std::replace(path.begin(), path.end(), '\\', '/');
  std::ofstream(path, std::ios::app | std::ios::binary) << text << '\n';
  return -1;  // what an entry point returns is not looked at
}

static const int loaded = Tell("loaded");

static void TakeLong() {
#ifdef SLOW
  std::this_thread::sleep_for(std::chrono::seconds(15));
#endif
}

#ifdef _WIN32
/// Called while nothing else can be loaded.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
  if (reason == DLL_THREAD_ATTACH) TakeLong();
  return TRUE;
}

static bool FindsWhatItNeeds() {
  for (const char* name : {"kt-beside.dll", "kt-own.dll", "kt-path.dll"}) LoadLibraryA(name);
  void* object = nullptr;
  return SUCCEEDED(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                    IID_IUnknown, &object));
}
#else
static bool FindsWhatItNeeds() {
  TakeLong();
  return true;
}
#endif

// Without parameters every calling convention comes to the same.
extern "C" {
int DllRegisterServer() {
  return Tell(FindsWhatItNeeds() ? "registered" : "registered without COM");
}
int DllUnregisterServer() { return Tell("unregistered"); }
}  // extern "C"
