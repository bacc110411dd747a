#include "AccessRights.h"
#include "FileSecurity.h"
#include "Retry.h"
#include "SystemError.h"
#include "SystemHandle.h"
#include "kyr/PlatformFiles.h"

#include <windows.h>

#include <cerrno>

namespace KyrCoreUtils::platform {

using zel::platform::AccessRights;
using zel::platform::Denied;
using zel::platform::deniedReplacement;
using zel::platform::FileSecurity;
using zel::platform::lastErrno;
using zel::platform::SystemHandle;
using zel::platform::whileShared;

namespace {

bool isDirectory(const std::filesystem::path& path) noexcept {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool isPresent(const std::filesystem::path& path) noexcept {
    return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

/// Returns the reason why `path` could not be created: the system does not tell some of them from a missing parent.
int reasonOf(int error, const std::filesystem::path& path) {
    constexpr std::size_t longestName = 255;
    if (path.filename().native().size() > longestName) {
        return ENAMETOOLONG;
    }
    const auto parent = path.parent_path();
    return error == ENOENT && isPresent(parent) && !isDirectory(parent) ? ENOTDIR : error;
}

int moveWith(DWORD flag, const std::filesystem::path& source, const std::filesystem::path& target, bool failIfExists) {
    const DWORD how = flag | (failIfExists ? 0 : MOVEFILE_REPLACE_EXISTING) | MOVEFILE_WRITE_THROUGH;
    const bool done = whileShared([&] { return ::MoveFileExW(source.c_str(), target.c_str(), how); },
                                  failIfExists ? Denied::Lasting : deniedReplacement(target.c_str()));
    return done ? 0 : lastErrno();
}

/// Copies the file. The copy inherits the rights of its folder, so it is restricted if the source was.
int moveAcrossVolumes(const std::filesystem::path& source, const std::filesystem::path& target, bool failIfExists) {
    try {
        const auto security = FileSecurity::read(source);
        const bool wasPrivate = security && !security->describe().usableByOthers;
        const int error = moveWith(MOVEFILE_COPY_ALLOWED, source, target, failIfExists);
        return error == 0 && wasPrivate ? AccessRights::restrict(target, AccessRights::Kind::File) : error;
    } catch (...) {
        return ENOMEM;
    }
}

} // namespace

int makeDirectory(const std::filesystem::path& path) noexcept {
    if (::CreateDirectoryW(path.c_str(), AccessRights::forCreation(AccessRights::Kind::Directory))) {
        return 0;
    }
    const int error = lastErrno();
    try {
        return reasonOf(error, path);
    } catch (...) {
        return error;
    }
}

int removeFile(const std::filesystem::path& path) noexcept {
    return whileShared([&] { return ::DeleteFileW(path.c_str()); }) ? 0 : lastErrno();
}

int moveFile(const std::filesystem::path& source, const std::filesystem::path& target, bool failIfExists) noexcept {
    if (!isPresent(source)) {
        return lastErrno();
    }
    if (isDirectory(source) || (!failIfExists && isDirectory(target))) {
        return EISDIR;
    }
    const int error = moveWith(0, source, target, failIfExists);
    return error == EXDEV ? moveAcrossVolumes(source, target, failIfExists) : error;
}

int makePrivateFile(const std::filesystem::path& path) noexcept {
    // A link is opened itself, and so its target is neither created nor restricted.
    const SystemHandle file(::CreateFileW(
        path.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | READ_CONTROL | WRITE_DAC,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, AccessRights::forCreation(AccessRights::Kind::File),
        OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!file) {
        return lastErrno();
    }
    if (::GetFileType(file.get()) != FILE_TYPE_DISK) {
        return EINVAL;
    }
    BY_HANDLE_FILE_INFORMATION information{};
    if (!::GetFileInformationByHandle(file.get(), &information)) {
        return lastErrno();
    }
    if ((information.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return ELOOP;
    }
    return AccessRights::restrict(file.get(), AccessRights::Kind::File);
}

} // namespace KyrCoreUtils::platform
