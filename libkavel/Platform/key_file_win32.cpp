#include <aclapi.h>
#include <windows.h>

#include <filesystem>
#include <memory>

#include "Platform/key_file.h"

namespace kavel::lidar {
namespace {

bool IsEverybody(void* identifier) {
  return IsWellKnownSid(identifier, WinWorldSid) ||
         IsWellKnownSid(identifier, WinBuiltinUsersSid) ||
         IsWellKnownSid(identifier, WinAuthenticatedUserSid);
}

// What the groups that everybody is in may do with a file of this list. The first entry that names
// a right decides on it; a file without a list is everybody's.
ACCESS_MASK RightsOfEverybody(ACL* list) {
  if (list == nullptr) {
    return FILE_ALL_ACCESS;
  }
  ACCESS_MASK allowed = 0;
  ACCESS_MASK denied = 0;
  for (DWORD i = 0; i < list->AceCount; ++i) {
    void* entry = nullptr;
    if (!GetAce(list, i, &entry)) {
      continue;
    }
    // Entries of both kinds have one layout.
    auto* ace = static_cast<ACCESS_ALLOWED_ACE*>(entry);
    const BYTE type = ace->Header.AceType;
    const bool counts = (type == ACCESS_ALLOWED_ACE_TYPE || type == ACCESS_DENIED_ACE_TYPE) &&
                        (ace->Header.AceFlags & INHERIT_ONLY_ACE) == 0;
    if (counts && IsEverybody(&ace->SidStart)) {
      (type == ACCESS_DENIED_ACE_TYPE ? denied : allowed) |= ace->Mask & ~(allowed | denied);
    }
  }
  return allowed;
}

}  // namespace

std::string KeyFileWarning(const std::string& path) {
  std::wstring name = std::filesystem::u8path(path).native();
  ACL* list = nullptr;
  void* descriptor = nullptr;
  if (GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                            nullptr, &list, nullptr, &descriptor) != ERROR_SUCCESS) {
    return "";
  }
  const std::unique_ptr<void, decltype(&LocalFree)> owner(descriptor, LocalFree);
  if ((RightsOfEverybody(list) & FILE_READ_DATA) == 0) {
    return "";
  }
  return "The key file " + path +
         " can be read by every user of this computer. Allow only its owner to read it "
         "(Properties, Security).";
}

}  // namespace kavel::lidar
