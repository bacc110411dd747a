#include "PrivateFiles.h"

// The other needs the system's header.
// clang-format off
#include <windows.h>
#include <aclapi.h>
// clang-format on

#include <memory>
#include <vector>

namespace testing_host {

namespace {

/// Returns the description of the user who runs this process; it begins with his identifier.
std::vector<unsigned char> readUser() {
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token)) {
        return {};
    }
    std::vector<unsigned char> user(256);
    auto size = static_cast<DWORD>(user.size());
    const bool isRead = ::GetTokenInformation(token, TokenUser, user.data(), size, &size) != FALSE;
    ::CloseHandle(token);
    return isRead ? user : std::vector<unsigned char>();
}

bool allowsOnly(PACL list, PSID user) {
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        if (!::GetAce(list, index, &entry)) {
            return false;
        }
        if (static_cast<const ACE_HEADER*>(entry)->AceType != ACCESS_ALLOWED_ACE_TYPE) {
            continue;
        }
        const PSID allowed = &static_cast<ACCESS_ALLOWED_ACE*>(entry)->SidStart;
        if (!::EqualSid(allowed, user) && !::IsWellKnownSid(allowed, WinLocalSystemSid)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool isPrivate(const std::filesystem::path& path) {
    auto user = readUser();
    std::wstring name = path.wstring();
    PSID owner = nullptr;
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (user.empty() ||
        ::GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                                &owner, nullptr, &list, nullptr, &descriptor) != ERROR_SUCCESS) {
        return false;
    }
    const std::unique_ptr<void, decltype(&::LocalFree)> release(descriptor, &::LocalFree);
    const PSID self = reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid;
    return owner != nullptr && ::EqualSid(owner, self) && list != nullptr && allowsOnly(list, self);
}

} // namespace testing_host
