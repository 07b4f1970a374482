// A component library that tells the file named by KESTRANE_TEST_LOG when it is registered, and
// that named by KESTRANE_LOAD_LOG when it is loaded. Built as SLOW it takes longer than anyone
// waits, and cannot be unregistered.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

static int Tell(const char* text, const char* log = "KESTRANE_TEST_LOG") {
  if (std::getenv(log) == nullptr) return 0;
  std::string path = std::getenv(log);
  std::replace(path.begin(), path.end(), '\\', '/');
  std::ofstream(path, std::ios::app | std::ios::binary) << text << '\n';
  return -1;  // what an entry point returns is not looked at
}

static const int loaded = Tell("loaded", "KESTRANE_LOAD_LOG");

// Without parameters every calling convention comes to the same.
extern "C" {

int DllRegisterServer() {
#ifdef SLOW
  std::this_thread::sleep_for(std::chrono::seconds(30));
#endif
  return Tell("registered");
}

#ifndef SLOW
int DllUnregisterServer() { return Tell("unregistered"); }
#endif

}  // extern "C"
