#include "FileDescriptor.h"
#include "kyr/PlatformFiles.h"
#include "zel/storage/DurableFile.h"

#include <zel/FileLayer.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

namespace KyrCoreUtils::platform {

namespace {

using zel::platform::FileDescriptor;

int errorOf(int result) {
    return result < 0 ? errno : 0;
}

int renameToFreeName(const char* source, const char* target) {
    const int result = errorOf(::renameat2(AT_FDCWD, source, AT_FDCWD, target, RENAME_NOREPLACE));
    if (result != EINVAL && result != ENOSYS) {
        return result;
    }
    // Fallback for a file system without this flag: link() also fails if the target exists.
    if (::link(source, target) != 0) {
        return errno;
    }
    return errorOf(::unlink(source));
}

int renameFile(const std::filesystem::path& source, const std::filesystem::path& target, bool failIfExists) {
    return failIfExists ? renameToFreeName(source.c_str(), target.c_str())
                        : errorOf(::rename(source.c_str(), target.c_str()));
}

int writeAll(int file, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(file, data, size);
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        if (written > 0) {
            data += written;
            size -= static_cast<std::size_t>(written);
        }
    }
    return 0;
}

int copyContent(int from, int to) {
    std::array<char, 16384> buffer;
    for (;;) {
        const ssize_t got = ::read(from, buffer.data(), buffer.size());
        if (got == 0) {
            return errorOf(::fsync(to));
        }
        if (got < 0 && errno != EINTR) {
            return errno;
        }
        if (got > 0) {
            if (const int error = writeAll(to, buffer.data(), static_cast<std::size_t>(got)); error != 0) {
                return error;
            }
        }
    }
}

/// Copies the file to a temporary name beside the target and renames it after the copy is complete. The target's folder
/// is synced before the source is removed, so that a power cut cannot leave neither. If the process is killed
/// meanwhile, DurableFile::removeLeftovers() removes the temporary file.
int moveAcrossDevices(const std::filesystem::path& source, const std::filesystem::path& target, bool failIfExists) {
    const FileDescriptor from(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status {};
    if (from.get() < 0 || ::fstat(from.get(), &status) != 0) {
        return errno;
    }
    if (!S_ISREG(status.st_mode)) {
        return EXDEV;
    }
    const std::string temporary = zel::storage::DurableFile::makeTemporaryName(target.string());
    const FileDescriptor to(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (to.get() < 0) {
        return errno;
    }
    int error = copyContent(from.get(), to.get());
    if (error == 0) {
        error = errorOf(::fchmod(to.get(), status.st_mode & 07777));
    }
    if (error == 0) {
        error = renameFile(temporary, target, failIfExists);
    }
    if (error != 0) {
        ::unlink(temporary.c_str());
        return error;
    }
    // The caller syncs both folders again and logs a failure.
    static_cast<void>(zel::storage::FileLayer::disk().syncDirectory(target.parent_path().string()));
    return errorOf(::unlink(source.c_str()));
}

} // namespace

int makeDirectory(const std::filesystem::path& path) noexcept {
    return errorOf(::mkdir(path.c_str(), 0700));
}

int removeFile(const std::filesystem::path& path) noexcept {
    return errorOf(::unlink(path.c_str()));
}

int moveFile(const std::filesystem::path& source, const std::filesystem::path& target, bool failIfExists) noexcept {
    struct stat status {};
    if (::lstat(source.c_str(), &status) != 0) {
        return errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    try {
        const int result = renameFile(source, target, failIfExists);
        return result == EXDEV ? moveAcrossDevices(source, target, failIfExists) : result;
    } catch (...) {
        return ENOMEM;
    }
}

int makePrivateFile(const std::filesystem::path& path) noexcept {
    const FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
    struct stat status {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) {
        return errno;
    }
    return S_ISREG(status.st_mode) ? errorOf(::fchmod(file.get(), 0600)) : EINVAL;
}

} // namespace KyrCoreUtils::platform
