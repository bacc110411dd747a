#include "FileSecurity.h"

#include "AccessRights.h"
#include "SystemError.h"

#include <kyr/StringUtils.h>

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <aclapi.h>
#include <sddl.h>
// clang-format on

#include <algorithm>
#include <array>
#include <cerrno>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace zel::platform {

using KyrCoreUtils::FileAccess;

namespace {

constexpr DWORD writing = FILE_WRITE_DATA | FILE_APPEND_DATA | FILE_WRITE_ATTRIBUTES | FILE_WRITE_EA |
                          FILE_DELETE_CHILD | DELETE | WRITE_DAC | WRITE_OWNER | GENERIC_WRITE | GENERIC_ALL;
constexpr DWORD anyUse = writing | FILE_READ_DATA | FILE_EXECUTE | GENERIC_READ | GENERIC_EXECUTE;
constexpr SECURITY_INFORMATION ownerAndList = OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;

/// The service that installs the system and owns most of its files.
constexpr auto installer = L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";

/// Groups to which users belong without being added by an administrator. As text, because some versions of the system
/// have no name for some of them.
constexpr std::array<std::wstring_view, 15> groupsOfAllUsers{
    L"S-1-1-0",      // everybody
    L"S-1-2-0",      // local users
    L"S-1-2-1",      // users at the console
    L"S-1-5-2",      // users over the network
    L"S-1-5-4",      // interactive users
    L"S-1-5-7",      // anonymous users
    L"S-1-5-11",     // authenticated users
    L"S-1-5-13",     // users of a terminal server
    L"S-1-5-14",     // users of a remote desktop
    L"S-1-5-15",     // users of this organization
    L"S-1-5-113",    // users with an account of this machine
    L"S-1-5-64-10",  // users authenticated by the older network protocol
    L"S-1-5-32-545", // the group of users
    L"S-1-5-32-546", // the group of guests
    L"S-1-5-32-554"  // everybody in a domain that still admits old clients
};

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

bool isEverybody(PSID user) {
    const std::wstring text = textOf(user);
    // The groups of users and of guests of a domain.
    const bool isOfDomain = text.starts_with(L"S-1-5-21-") && (text.ends_with(L"-513") || text.ends_with(L"-514"));
    return isOfDomain || std::ranges::find(groupsOfAllUsers, text) != groupsOfAllUsers.end();
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

/// Returns true if the entry allows rights on the file itself.
bool isAllowing(const ACE_HEADER& entry) {
    constexpr std::array<BYTE, 5> allowing{ACCESS_ALLOWED_ACE_TYPE, ACCESS_ALLOWED_COMPOUND_ACE_TYPE,
                                           ACCESS_ALLOWED_OBJECT_ACE_TYPE, ACCESS_ALLOWED_CALLBACK_ACE_TYPE,
                                           ACCESS_ALLOWED_CALLBACK_OBJECT_ACE_TYPE};
    return (entry.AceFlags & INHERIT_ONLY_ACE) == 0 && std::ranges::find(allowing, entry.AceType) != allowing.end();
}

/// Returns true if the entry consists of a mask and a user. A conditional entry counts as unconditional.
bool hasMaskAndUser(const ACE_HEADER& entry) {
    return entry.AceType == ACCESS_ALLOWED_ACE_TYPE || entry.AceType == ACCESS_ALLOWED_CALLBACK_ACE_TYPE;
}

/// Returns the rights that the entry allows to a user or group for which `isMeant` returns true. An allowing entry of
/// another form counts as full access for everybody.
template <class Predicate>
DWORD findRightsOf(void* entry, Predicate isMeant) {
    const auto& header = *static_cast<const ACE_HEADER*>(entry);
    if (!isAllowing(header)) {
        return 0;
    }
    if (!hasMaskAndUser(header)) {
        return GENERIC_ALL;
    }
    auto* const allowing = static_cast<ACCESS_ALLOWED_ACE*>(entry);
    return isMeant(static_cast<PSID>(&allowing->SidStart)) ? allowing->Mask : 0;
}

/// Returns the rights that the list allows to at least one user or group for which `isMeant` returns true. Null, and an
/// entry that cannot be read, allow everything to everybody.
template <class Predicate>
DWORD findRights(PACL list, Predicate isMeant) {
    if (list == nullptr) {
        return GENERIC_ALL;
    }
    DWORD rights = 0;
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        rights |= ::GetAce(list, index, &entry) ? findRightsOf(entry, isMeant) : GENERIC_ALL;
    }
    return rights;
}

/// Returns true for an error that means that there is no such file.
bool isMissing(DWORD systemError) {
    const int error = errnoOf(systemError);
    return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG;
}

} // namespace

std::optional<FileSecurity> FileSecurity::read(const std::filesystem::path& path) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    std::wstring name = path.wstring();
    const DWORD error = ::GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, ownerAndList, nullptr, nullptr, nullptr,
                                                nullptr, &descriptor);
    return isMissing(error) ? std::nullopt : std::optional(take(error == ERROR_SUCCESS ? descriptor : nullptr));
}

FileSecurity FileSecurity::read(HANDLE file) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error =
        ::GetSecurityInfo(file, SE_FILE_OBJECT, ownerAndList, nullptr, nullptr, nullptr, nullptr, &descriptor);
    return take(error == ERROR_SUCCESS ? descriptor : nullptr);
}

FileSecurity FileSecurity::take(PSECURITY_DESCRIPTOR allocated) {
    Descriptor descriptor(allocated, &::LocalFree);
    PSID owner = nullptr;
    PACL list = nullptr;
    BOOL isPresent = FALSE;
    BOOL isDefault = FALSE;
    if (allocated == nullptr || !::GetSecurityDescriptorOwner(allocated, &owner, &isDefault) ||
        !::GetSecurityDescriptorDacl(allocated, &isPresent, &list, &isDefault)) {
        return FileSecurity(std::move(descriptor), nullptr, nullptr);
    }
    return FileSecurity(std::move(descriptor), owner, isPresent ? list : nullptr);
}

FileAccess FileSecurity::describe() const {
    if (owner == nullptr) {
        return {.owner = FileAccess::Owner::Other,
                .ownerName = "",
                .writableByEverybody = true,
                .writableByOthers = true,
                .usableByOthers = true};
    }
    const DWORD rightsOfAll = findRights(list, isEverybody);
    const DWORD rightsOfOthers = findRights(list, [this](PSID user) { return !isTrusted(user); });
    return {.owner = classify(owner),
            .ownerName = nameOf(owner),
            .writableByEverybody = (rightsOfAll & writing) != 0,
            .writableByOthers = (rightsOfOthers & writing) != 0,
            .usableByOthers = (rightsOfOthers & anyUse) != 0};
}

bool FileSecurity::belongsToAnotherUser() const {
    // A file system without owners, for example FAT, names everybody.
    return owner == nullptr ||
           (classify(owner) == FileAccess::Owner::Other && ::IsWellKnownSid(owner, WinWorldSid) == FALSE);
}

bool FileSecurity::isTrusted(PSID user) const {
    return ::EqualSid(user, owner) != FALSE || isOneOf(user, {WinCreatorOwnerRightsSid}) || isAdministrator(user) ||
           isSelf(user);
}

} // namespace zel::platform
