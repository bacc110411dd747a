#include "PrivateFiles.h"

// The other needs the system's header.
// clang-format off
#include <windows.h>
#include <aclapi.h>
#include <sddl.h>
// clang-format on

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace testing_host {

namespace {

/// Returns the id of the user who runs this process; empty if it is unknown.
std::vector<unsigned char> readUser() {
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token)) {
        return {};
    }
    std::vector<unsigned char> description(256);
    auto size = static_cast<DWORD>(description.size());
    const bool isRead = ::GetTokenInformation(token, TokenUser, description.data(), size, &size) != FALSE;
    ::CloseHandle(token);
    if (!isRead) {
        return {};
    }
    const PSID id = reinterpret_cast<const TOKEN_USER*>(description.data())->User.Sid;
    const auto* const bytes = static_cast<const unsigned char*>(id);
    return {bytes, bytes + ::GetLengthSid(id)};
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
        if (!::EqualSid(allowed, user) && !::IsWellKnownSid(allowed, WinLocalSystemSid) &&
            !::IsWellKnownSid(allowed, WinBuiltinAdministratorsSid)) {
            return false;
        }
    }
    return true;
}

/// Replaces the access list by one that allows everything to the owner, and these rights to everybody.
void allow(const std::filesystem::path& path, const std::wstring& rightsOfEverybody) {
    auto user = readUser();
    LPWSTR name = nullptr;
    if (user.empty() || !::ConvertSidToStringSidW(user.data(), &name)) {
        throw std::runtime_error("the user is unknown");
    }
    const std::unique_ptr<wchar_t, decltype(&::LocalFree)> allocated(name, &::LocalFree);
    const std::wstring inherited = std::filesystem::is_directory(path) ? L"OICI" : L"";
    std::wstring text = L"D:P(A;" + inherited + L";FA;;;" + name + L")";
    if (!rightsOfEverybody.empty()) {
        text += L"(A;" + inherited + L";" + rightsOfEverybody + L";;;WD)";
    }
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ::ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &descriptor, nullptr);
    const std::unique_ptr<void, decltype(&::LocalFree)> release(descriptor, &::LocalFree);
    if (descriptor == nullptr ||
        !::SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
                            descriptor)) {
        throw std::runtime_error("the access list cannot be set");
    }
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
    return owner != nullptr && ::EqualSid(owner, user.data()) && list != nullptr && allowsOnly(list, user.data());
}

void letEverybodyRead(const std::filesystem::path& path) {
    allow(path, L"FR");
}

void letEverybodyWrite(const std::filesystem::path& path) {
    allow(path, L"FA");
}

void makePrivate(const std::filesystem::path& path) {
    allow(path, L"");
}

} // namespace testing_host
