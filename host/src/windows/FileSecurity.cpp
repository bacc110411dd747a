#include "FileSecurity.h"

#include "AccessRights.h"

#include <kyr/StringUtils.h>

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <aclapi.h>
#include <sddl.h>
// clang-format on

#include <algorithm>
#include <array>
#include <initializer_list>
#include <memory>
#include <string>

namespace zel::platform {

using KyrCoreUtils::FileAccess;

namespace {

constexpr DWORD writing = FILE_WRITE_DATA | FILE_APPEND_DATA | FILE_DELETE_CHILD | DELETE | WRITE_DAC | WRITE_OWNER |
                          GENERIC_WRITE | GENERIC_ALL;
constexpr DWORD anyUse = writing | FILE_READ_DATA | FILE_EXECUTE | GENERIC_READ | GENERIC_EXECUTE;
constexpr SECURITY_INFORMATION ownerAndList = OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;

/// The service that installs the system and owns most of its files.
constexpr auto installer = L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";

std::wstring textOf(PSID user) {
    LPWSTR text = nullptr;
    if (!::ConvertSidToStringSidW(user, &text)) {
        return {};
    }
    const std::unique_ptr<wchar_t, decltype(&::LocalFree)> allocated(text, &::LocalFree);
    return text;
}

bool isOneOf(PSID user, std::initializer_list<WELL_KNOWN_SID_TYPE> kinds) {
    return std::ranges::any_of(kinds, [user](auto kind) { return ::IsWellKnownSid(user, kind) != FALSE; });
}

/// Groups to which users belong without being added by an administrator.
bool isEverybody(PSID user) {
    return isOneOf(user, {WinWorldSid, WinAuthenticatedUserSid, WinBuiltinUsersSid, WinInteractiveSid,
                          WinBuiltinGuestsSid, WinAnonymousSid, WinNetworkSid});
}

bool isAdministrator(PSID user) {
    return isOneOf(user, {WinBuiltinAdministratorsSid, WinLocalSystemSid}) || textOf(user) == installer;
}

bool isSelf(PSID user) {
    auto self = AccessRights::readUserId();
    return !self.empty() && ::EqualSid(user, self.data()) != FALSE;
}

FileAccess::Owner classify(PSID owner) {
    if (isSelf(owner)) {
        return FileAccess::Owner::Self;
    }
    return isAdministrator(owner) ? FileAccess::Owner::Administrator : FileAccess::Owner::Other;
}

std::string nameOf(PSID user) {
    std::array<wchar_t, 256> name{};
    std::array<wchar_t, 256> domain{};
    auto nameSize = static_cast<DWORD>(name.size());
    auto domainSize = static_cast<DWORD>(domain.size());
    SID_NAME_USE use{};
    const bool isKnown = ::LookupAccountSidW(nullptr, user, name.data(), &nameSize, domain.data(), &domainSize, &use);
    return KyrCoreUtils::toString(isKnown ? std::wstring(name.data()) : textOf(user));
}

/// Returns the entry if it allows rights on the file itself, otherwise null. A conditional entry counts as
/// unconditional.
ACCESS_ALLOWED_ACE* asAllowingEntry(void* entry) {
    const auto* const header = static_cast<const ACE_HEADER*>(entry);
    const bool allows =
        header->AceType == ACCESS_ALLOWED_ACE_TYPE || header->AceType == ACCESS_ALLOWED_CALLBACK_ACE_TYPE;
    return allows && (header->AceFlags & INHERIT_ONLY_ACE) == 0 ? static_cast<ACCESS_ALLOWED_ACE*>(entry) : nullptr;
}

/// Returns the rights that the list allows to at least one user or group for which `isMeant` returns true. Null allows
/// everything to everybody.
template <class Predicate>
DWORD findRights(PACL list, Predicate isMeant) {
    if (list == nullptr) {
        return GENERIC_ALL;
    }
    DWORD rights = 0;
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        auto* const allowing = ::GetAce(list, index, &entry) ? asAllowingEntry(entry) : nullptr;
        if (allowing != nullptr && isMeant(static_cast<PSID>(&allowing->SidStart))) {
            rights |= allowing->Mask;
        }
    }
    return rights;
}

} // namespace

std::optional<FileSecurity> FileSecurity::read(const std::filesystem::path& path) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    std::wstring name = path.wstring();
    const DWORD error = ::GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, ownerAndList, nullptr, nullptr, nullptr,
                                                nullptr, &descriptor);
    return error == ERROR_SUCCESS ? take(descriptor) : std::nullopt;
}

std::optional<FileSecurity> FileSecurity::read(HANDLE file) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error =
        ::GetSecurityInfo(file, SE_FILE_OBJECT, ownerAndList, nullptr, nullptr, nullptr, nullptr, &descriptor);
    return error == ERROR_SUCCESS ? take(descriptor) : std::nullopt;
}

std::optional<FileSecurity> FileSecurity::take(PSECURITY_DESCRIPTOR allocated) {
    Descriptor descriptor(allocated, &::LocalFree);
    PSID owner = nullptr;
    PACL list = nullptr;
    BOOL isPresent = FALSE;
    BOOL isDefault = FALSE;
    if (!::GetSecurityDescriptorOwner(allocated, &owner, &isDefault) || owner == nullptr ||
        !::GetSecurityDescriptorDacl(allocated, &isPresent, &list, &isDefault)) {
        return std::nullopt;
    }
    return FileSecurity(std::move(descriptor), owner, isPresent ? list : nullptr);
}

FileAccess FileSecurity::describe() const {
    const DWORD rightsOfAll = findRights(list, isEverybody);
    const DWORD rightsOfOthers = findRights(list, [this](PSID user) { return !isTrusted(user); });
    return {.owner = classify(owner),
            .ownerName = nameOf(owner),
            .writableByEverybody = (rightsOfAll & writing) != 0,
            .writableByOthers = (rightsOfOthers & writing) != 0,
            .usableByOthers = (rightsOfOthers & anyUse) != 0};
}

bool FileSecurity::isTrusted(PSID user) const {
    return ::EqualSid(user, owner) != FALSE || isOneOf(user, {WinCreatorOwnerRightsSid}) || isAdministrator(user) ||
           isSelf(user);
}

} // namespace zel::platform
