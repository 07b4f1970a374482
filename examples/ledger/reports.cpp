// The component library of the sample application. It registers itself in a file beside itself, so
// that a registration can be seen in the folder.

#include <filesystem>
#include <fstream>

#ifdef _WIN32
#include <windows.h>
#define ENTRY HRESULT __stdcall
#else
#include <dlfcn.h>
#define ENTRY int
#endif

static std::filesystem::path Library() {
#ifdef _WIN32
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(GetModuleHandleW(L"reports.ocx"), path, MAX_PATH);
  return path;
#else
  static const int somethingInside = 0;
  Dl_info library = {};
  dladdr(&somethingInside, &library);
  return library.dli_fname;
#endif
}

static std::filesystem::path RegistrationFile() {
  return Library().replace_filename("reports.registered");
}

extern "C" ENTRY DllRegisterServer() {
  std::ofstream file(RegistrationFile(), std::ios::binary);
  file << "Ledger reports " LEDGER_VERSION " are registered\n";
  return file.flush() ? 0 : -1;
}

extern "C" ENTRY DllUnregisterServer() {
  std::error_code error;
  std::filesystem::remove(RegistrationFile(), error);
  return error ? -1 : 0;
}
