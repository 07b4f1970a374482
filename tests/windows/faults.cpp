#include <windows.h>

#include <psapi.h>
#include <wincrypt.h>

#include "tests/support/faults.h"
#include "tests/support/sandbox.h"

namespace faults {

std::string Hide(const std::string& path) {
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN);
  return path;
}

std::shared_ptr<void> Lock(const std::string& path, bool shares) {
  const DWORD sharing = shares ? FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE : 0;
  return {CreateFileA(path.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr),
          CloseHandle};
}

Resources ResourcesInUse() {
  PROCESS_MEMORY_COUNTERS memory = {};
  GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
  // Wine counts neither, but gives out the lowest handle that is free, and the graphics object that
  // was freed last.
  const HANDLE newHandle = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  const HBRUSH newObject = CreateSolidBrush(RGB(1, 2, 3));
  CloseHandle(newHandle);
  DeleteObject(newObject);
  return {.handles = static_cast<long>(reinterpret_cast<LONG_PTR>(newHandle) / 4),
          .graphicsObjects = LOWORD(newObject),
          .kilobytes = static_cast<long>(memory.PagefileUsage / 1024)};
}

bool OnWine() {
  return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
}

std::shared_ptr<void> TrustAuthority(const std::string& certificateFile) {
  const std::string bytes = ReadWhole(certificateFile);
  const HCERTSTORE roots = CertOpenSystemStoreA(0, "ROOT");
  const CERT_CONTEXT* certificate = nullptr;
  CertAddEncodedCertificateToStore(
      roots, X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(bytes.data()),
      static_cast<DWORD>(bytes.size()), CERT_STORE_ADD_REPLACE_EXISTING, &certificate);
  // Other processes, and this one's HTTP, see the change once it is committed.
  CertControlStore(roots, 0, CERT_STORE_CTRL_COMMIT, nullptr);
  return {roots, [certificate](HCERTSTORE store) {
            CertDeleteCertificateFromStore(certificate);
            CertCloseStore(store, 0);
          }};
}

}  // namespace faults
