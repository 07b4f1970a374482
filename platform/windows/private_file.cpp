#include "platform/private_file.h"

#include <windows.h>

#include <array>
#include <cstddef>

namespace platform::private_file {
namespace {

/// Rights for the user of this process, and nobody else.
class OwnRights {
 public:
  OwnRights() {
    HANDLE token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == FALSE) return;
    DWORD size = 0;
    const bool known =
        GetTokenInformation(token, TokenUser, user.data(), sizeof user, &size) != FALSE;
    CloseHandle(token);
    auto* const list = reinterpret_cast<ACL*>(entries.data());
    usable =
        known && InitializeAcl(list, sizeof entries, ACL_REVISION) != FALSE &&
        AddAccessAllowedAce(list, ACL_REVISION, GENERIC_ALL,
                            reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid) != FALSE &&
        InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION) != FALSE &&
        SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE) != FALSE &&
        SetSecurityDescriptorControl(&descriptor, SE_DACL_PROTECTED, SE_DACL_PROTECTED) != FALSE;
  }
  OwnRights(const OwnRights&) = delete;
  OwnRights& operator=(const OwnRights&) = delete;

  /// Null when the system does not tell who the user is.
  [[nodiscard]] SECURITY_DESCRIPTOR* Descriptor() { return usable ? &descriptor : nullptr; }

 private:
  static constexpr std::size_t Enough = 256;  // bytes, for a user and for a list that names him

  alignas(TOKEN_USER) std::array<std::byte, Enough> user{};
  alignas(ACL) std::array<std::byte, Enough> entries{};
  SECURITY_DESCRIPTOR descriptor{};
  bool usable = false;
};

}  // namespace

bool Create(const std::filesystem::path& path, std::string_view bytes) {
  OwnRights rights;
  SECURITY_ATTRIBUTES attributes = {sizeof attributes, rights.Descriptor(), FALSE};
  if (attributes.lpSecurityDescriptor == nullptr) return false;
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, &attributes, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  DWORD count = 0;
  const bool written =
      WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) != FALSE &&
      count == bytes.size();
  if (CloseHandle(file) != FALSE && written) return true;
  DeleteFileW(path.c_str());
  return false;
}

}  // namespace platform::private_file
