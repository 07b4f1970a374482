// A component library that tells the file named by KESTRANE_TEST_LOG when it is loaded and when it
// is registered. On Windows it then needs COM, and loads neighbours by their names where there are
// some. Built as SLOW it takes longer than anyone waits, keeps others from loading libraries
// meanwhile, and cannot be unregistered.

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

#ifdef _WIN32
template <typename Function>
static Function* FromNtdll(const char* name) {
  const auto function = GetProcAddress(GetModuleHandleA("ntdll.dll"), name);
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(function));
}
[[maybe_unused]] static void SleepInLoader(std::chrono::seconds nap) {
  const auto lock = FromNtdll<LONG WINAPI(ULONG, ULONG*, ULONG_PTR*)>("LdrLockLoaderLock");
  const auto unlock = FromNtdll<LONG WINAPI(ULONG, ULONG_PTR)>("LdrUnlockLoaderLock");
  ULONG_PTR cookie = 0;
  lock(0, nullptr, &cookie);
  std::this_thread::sleep_for(nap);
  unlock(0, cookie);
}
static bool FindsWhatItNeeds() {
  for (const char* name : {"kt-beside.dll", "kt-own.dll", "kt-path.dll"}) LoadLibraryA(name);
  void* object = nullptr;
  return SUCCEEDED(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                    IID_IUnknown, &object));
}
#else
[[maybe_unused]] static void SleepInLoader(std::chrono::seconds nap) {
  std::this_thread::sleep_for(nap);
}
static bool FindsWhatItNeeds() { return true; }
#endif

// Without parameters every calling convention comes to the same.
extern "C" {

int DllRegisterServer() {
#ifdef SLOW
  SleepInLoader(std::chrono::seconds(15));
#endif
  return Tell(FindsWhatItNeeds() ? "registered" : "registered without COM");
}

#ifndef SLOW
int DllUnregisterServer() { return Tell("unregistered"); }
#endif

}  // extern "C"
