#include "AccessRights.h"
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
    const DWORD how = (failIfExists ? 0 : MOVEFILE_REPLACE_EXISTING) | MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH;
    const bool done = whileShared([&] { return ::MoveFileExW(source.c_str(), target.c_str(), how); },
                                  failIfExists ? Denied::Lasting : deniedReplacement(target.c_str()));
    return done ? 0 : lastErrno();
}

int makePrivateFile(const std::filesystem::path& path) noexcept {
    const SystemHandle file(::CreateFileW(
        path.c_str(), FILE_APPEND_DATA | WRITE_DAC, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        AccessRights::forCreation(AccessRights::Kind::File), OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        return lastErrno();
    }
    if (::GetFileType(file.get()) != FILE_TYPE_DISK) {
        return EINVAL;
    }
    return AccessRights::restrict(file.get(), AccessRights::Kind::File);
}

} // namespace KyrCoreUtils::platform
