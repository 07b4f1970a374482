// A component library that tells the file named by KESTRANE_TEST_LOG when it is loaded and when it
// is registered. Built as SLOW it takes longer than anyone waits, and cannot be unregistered.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

static int Tell(const char* text) {
  const char* log = std::getenv("KESTRANE_TEST_LOG");
  std::string path = log != nullptr ? log : "";
  std::replace(path.begin(), path.end(), '\\', '/');
  std::ofstream(path, std::ios::app | std::ios::binary) << text << '\n';
  return -1;  // what an entry point returns is not looked at
}

static const int loaded = Tell("loaded");

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
