// The component library of the sample application. Instead of an entry in the registry it keeps a
// file beside itself, so that a registration can be seen in the folder.

#include <windows.h>

#include <filesystem>
#include <fstream>

namespace {

std::filesystem::path RegistrationFile() {
  wchar_t library[MAX_PATH] = {};
  GetModuleFileNameW(GetModuleHandleW(L"reports.ocx"), library, MAX_PATH);
  return std::filesystem::path(library).replace_filename("reports.registered");
}

}  // namespace

extern "C" HRESULT __stdcall DllRegisterServer() {
  std::ofstream file(RegistrationFile());
  file << "Ledger reports " LEDGER_VERSION " are registered\n";
  return file.flush() ? S_OK : E_FAIL;
}

extern "C" HRESULT __stdcall DllUnregisterServer() {
  std::error_code error;
  std::filesystem::remove(RegistrationFile(), error);
  return error ? E_FAIL : S_OK;
}
