#include "AccessRights.h"

#include "FileSecurity.h"
#include "SystemError.h"
#include "SystemHandle.h"

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <sddl.h>
// clang-format on

#include <cerrno>
#include <string>

namespace zel::platform {

namespace {

constexpr const wchar_t* systemUser = L"SY";
constexpr const wchar_t* administrators = L"BA";

/// A description of access rights, and the attributes that refer to it.
class PrivateRights {
public:
    explicit PrivateRights(AccessRights::Kind kind) {
        auto user = AccessRights::readUserId();
        LPWSTR text = nullptr;
        if (user.empty() || !::ConvertSidToStringSidW(user.data(), &text)) {
            return;
        }
        const std::unique_ptr<wchar_t, decltype(&::LocalFree)> owner(text, &::LocalFree);
        // Protected: nothing is inherited from the parent. What is created in a directory inherits these rights. Names
        // the owner, because otherwise the files of an administrator belong to the group of administrators.
        const std::wstring start = kind == AccessRights::Kind::Directory ? L"(A;OICI;FA;;;" : L"(A;;FA;;;";
        std::wstring rights = L"O:" + std::wstring(text) + L"D:P";
        for (const auto* const allowed : {static_cast<const wchar_t*>(text), systemUser, administrators}) {
            rights += start + allowed + L")";
        }
        if (::ConvertStringSecurityDescriptorToSecurityDescriptorW(rights.c_str(), SDDL_REVISION_1, &descriptor,
                                                                   nullptr)) {
            attributes = {sizeof attributes, descriptor, FALSE};
        }
    }
    ~PrivateRights() { ::LocalFree(descriptor); }
    PrivateRights(const PrivateRights&) = delete;
    PrivateRights& operator=(const PrivateRights&) = delete;

    SECURITY_ATTRIBUTES* get() noexcept { return descriptor != nullptr ? &attributes : nullptr; }

private:
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    SECURITY_ATTRIBUTES attributes{};
};

/// Returns EPERM if another user owns the file: he can always change its list.
int requireOwner(HANDLE file) noexcept {
    try {
        return FileSecurity::read(file).belongsToAnotherUser() ? EPERM : 0;
    } catch (...) {
        return ENOMEM;
    }
}

} // namespace

std::vector<unsigned char> AccessRights::readUserId() {
    HANDLE opened = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &opened)) {
        return {};
    }
    const SystemHandle token(opened);
    DWORD size = 0;
    ::GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size);
    std::vector<unsigned char> buffer(size);
    if (size < sizeof(TOKEN_USER) || !::GetTokenInformation(token.get(), TokenUser, buffer.data(), size, &size)) {
        return {};
    }
    const PSID id = reinterpret_cast<const TOKEN_USER*>(buffer.data())->User.Sid;
    const auto* const bytes = static_cast<const unsigned char*>(id);
    return {bytes, bytes + ::GetLengthSid(id)};
}

SECURITY_ATTRIBUTES* AccessRights::forCreation(Kind kind) noexcept {
    // Never destroyed: files may be written while the process ends.
    static auto& file = *new PrivateRights(Kind::File);
    static auto& directory = *new PrivateRights(Kind::Directory);
    return kind == Kind::File ? file.get() : directory.get();
}

int AccessRights::restrict(const std::filesystem::path& path, Kind kind) noexcept {
    constexpr DWORD sharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    // Without this flag a directory cannot be opened.
    const SystemHandle file(::CreateFileW(path.c_str(), READ_CONTROL | WRITE_DAC, sharedWithAll, nullptr, OPEN_EXISTING,
                                          FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return file ? restrict(file.get(), kind) : lastErrno();
}

int AccessRights::restrict(HANDLE file, Kind kind) noexcept {
    const SECURITY_ATTRIBUTES* const rights = forCreation(kind);
    if (rights == nullptr) {
        return ENOTSUP;
    }
    if (const int error = requireOwner(file); error != 0) {
        return error;
    }
    // Not SetSecurityInfo(), which takes only the list: under wine it adds the entries inherited from the parent
    // although the list is protected.
    if (::SetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
                                  rights->lpSecurityDescriptor)) {
        return 0;
    }
    // Some file systems keep no access rights.
    const int error = lastErrno();
    return error == ENOTSUP ? 0 : error;
}

} // namespace zel::platform
