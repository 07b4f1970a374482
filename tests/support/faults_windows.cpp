#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>
#include <wincrypt.h>

#include <vector>

#include "tests/support/faults.h"
#include "tests/support/sandbox.h"

namespace faults {
namespace {

/// Other processes, and this one's HTTP, see the change once the store is closed.
template <typename Change>
void ChangeRootStore(Change change) {
  const HCERTSTORE store = CertOpenSystemStoreA(0, "ROOT");
  change(store);
  CertCloseStore(store, 0);
}

}  // namespace

std::string Hide(const std::string& path) {
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN);
  return path;
}

std::shared_ptr<void> Lock(const std::string& path) {
  return {CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
          CloseHandle};
}

std::uint32_t CodeOfTerminated(std::uint32_t exitCode) { return exitCode; }

Resources ResourcesInUse() {
  PROCESS_MEMORY_COUNTERS memory = {};
  GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 thread = {};
  thread.dwSize = sizeof thread;
  long threads = 0;
  for (BOOL more = Thread32First(snapshot, &thread); more != FALSE;
       more = Thread32Next(snapshot, &thread)) {
    if (thread.th32OwnerProcessID == GetCurrentProcessId()) ++threads;
  }
  CloseHandle(snapshot);
  // Wine counts neither, but gives out the lowest handle that is free, and the graphics object that
  // was freed last.
  const HANDLE newHandle = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  const HBRUSH newObject = CreateSolidBrush(RGB(1, 2, 3));
  CloseHandle(newHandle);
  DeleteObject(newObject);
  return {.handles = static_cast<long>(reinterpret_cast<LONG_PTR>(newHandle) / 4),
          .threads = threads,
          .graphicsObjects = LOWORD(newObject),
          .kilobytes = static_cast<long>(memory.PagefileUsage / 1024)};
}

bool OnWine() {
  return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
}

std::shared_ptr<void> TrustAuthority(const std::string& certificateFile) {
  const std::string text = ReadWhole(certificateFile);
  std::vector<BYTE> bytes(text.size());
  DWORD size = static_cast<DWORD>(bytes.size());
  CryptStringToBinaryA(text.c_str(), 0, CRYPT_STRING_BASE64HEADER, bytes.data(), &size, nullptr,
                       nullptr);
  const CERT_CONTEXT* certificate =
      CertCreateCertificateContext(X509_ASN_ENCODING, bytes.data(), size);
  ChangeRootStore([certificate](HCERTSTORE store) {
    CertAddCertificateContextToStore(store, certificate, CERT_STORE_ADD_REPLACE_EXISTING, nullptr);
  });
  return {nullptr, [certificate](void*) {
            ChangeRootStore([certificate](HCERTSTORE store) {
              CertDeleteCertificateFromStore(CertFindCertificateInStore(
                  store, X509_ASN_ENCODING, 0, CERT_FIND_EXISTING, certificate, nullptr));
            });
            CertFreeCertificateContext(certificate);
          }};
}

}  // namespace faults
