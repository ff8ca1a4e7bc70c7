#include "utils/platform/directory_access.h"

#include <algorithm>
#include <array>
#include <memory>

#include "utils/platform/windows/system.h"

#include <aclapi.h>

namespace Zentara::Utils::Platform {
namespace {

struct LocalFreer {
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};

/// The groups that hold every user of the machine.
bool isEverybody(PSID owner) {
    constexpr std::array groups{WinWorldSid, WinAuthenticatedUserSid, WinBuiltinUsersSid};
    return std::any_of(groups.begin(), groups.end(),
                       [owner](WELL_KNOWN_SID_TYPE group) { return IsWellKnownSid(owner, group) != 0; });
}

bool letsEverybodyWrite(ACL* list, DWORD index) {
    void* found = nullptr;
    if (!GetAce(list, index, &found) || static_cast<ACE_HEADER*>(found)->AceType != ACCESS_ALLOWED_ACE_TYPE)
        return false;
    auto* entry = static_cast<ACCESS_ALLOWED_ACE*>(found);
    const bool mayWrite = (entry->Mask & (FILE_ADD_FILE | GENERIC_WRITE | GENERIC_ALL)) != 0;
    const bool isForOthers = (entry->Header.AceFlags & INHERIT_ONLY_ACE) != 0;
    return mayWrite && !isForOthers && isEverybody(&entry->SidStart);
}

} // namespace

bool everybodyMayWrite(const std::string& directory) {
    const int size = MultiByteToWideChar(CP_UTF8, 0, directory.c_str(), -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(size, 1)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, directory.c_str(), -1, wide.data(), size);
    ACL* list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetNamedSecurityInfoW(wide.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                              nullptr, &descriptor) != ERROR_SUCCESS)
        return false;
    const std::unique_ptr<void, LocalFreer> owned(descriptor);
    if (list == nullptr)
        return true; // no list: nobody is kept out
    for (DWORD index = 0; index < list->AceCount; ++index) {
        if (letsEverybodyWrite(list, index))
            return true;
    }
    return false;
}

/// Devices have no files here whose permissions could be looked at.
bool mayReadAndWrite(const std::string&) { return true; }

} // namespace Zentara::Utils::Platform
