#include "AccessRights.h"
#include "kyr/PathText.h"

#include <kyr/FileAccess.h>
#include <kyr/StringUtils.h>

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <aclapi.h>
#include <sddl.h>
// clang-format on

#include <array>
#include <memory>

namespace KyrCoreUtils {

namespace {

using zel::platform::AccessRights;

constexpr DWORD writing = FILE_WRITE_DATA | FILE_APPEND_DATA | GENERIC_WRITE | GENERIC_ALL;

bool isOfKind(PSID user, WELL_KNOWN_SID_TYPE kind) {
    return ::IsWellKnownSid(user, kind) != FALSE;
}

FileAccess::Owner classify(PSID owner) {
    auto self = AccessRights::readUserId();
    if (!self.empty() && ::EqualSid(owner, self.data())) {
        return FileAccess::Owner::Self;
    }
    return isOfKind(owner, WinBuiltinAdministratorsSid) || isOfKind(owner, WinLocalSystemSid)
               ? FileAccess::Owner::Administrator
               : FileAccess::Owner::Other;
}

std::string nameOf(PSID user) {
    std::array<wchar_t, 256> name{};
    std::array<wchar_t, 256> domain{};
    auto nameSize = static_cast<DWORD>(name.size());
    auto domainSize = static_cast<DWORD>(domain.size());
    SID_NAME_USE use{};
    if (::LookupAccountSidW(nullptr, user, name.data(), &nameSize, domain.data(), &domainSize, &use)) {
        return toString(name.data());
    }
    LPWSTR text = nullptr;
    if (!::ConvertSidToStringSidW(user, &text)) {
        return {};
    }
    const std::unique_ptr<wchar_t, decltype(&::LocalFree)> owner(text, &::LocalFree);
    return toString(text);
}

bool isEverybody(PSID user) {
    return isOfKind(user, WinWorldSid) || isOfKind(user, WinAuthenticatedUserSid) || isOfKind(user, WinBuiltinUsersSid);
}

bool allowsEverybodyToWrite(PACL list) {
    if (list == nullptr) {
        return true; // a file without a list is open to all
    }
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        if (!::GetAce(list, index, &entry)) {
            continue;
        }
        const auto* const header = static_cast<const ACE_HEADER*>(entry);
        if (header->AceType != ACCESS_ALLOWED_ACE_TYPE || (header->AceFlags & INHERIT_ONLY_ACE) != 0) {
            continue;
        }
        auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        if ((allowed->Mask & writing) != 0 && isEverybody(&allowed->SidStart)) {
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<FileAccess> FileAccess::read(const std::string& path) {
    const auto file = pathFromText(path);
    if (!file) {
        return std::nullopt;
    }
    PSID owner = nullptr;
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    std::wstring name = file->wstring();
    if (::GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                                &owner, nullptr, &list, nullptr, &descriptor) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    const std::unique_ptr<void, decltype(&::LocalFree)> release(descriptor, &::LocalFree);
    if (owner == nullptr) {
        return std::nullopt;
    }
    return FileAccess{classify(owner), nameOf(owner), allowsEverybodyToWrite(list)};
}

std::optional<unsigned> FileAccess::readMode(const std::string& /*path*/) {
    return std::nullopt;
}

} // namespace KyrCoreUtils
