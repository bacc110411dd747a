#include "PosixFileLayer.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>

namespace zel::storage {

namespace {

constexpr mode_t privateFile = 0600;
constexpr mode_t privateDirectory = 0700;

/// Repeats the call while it is interrupted. Returns its result.
template <typename Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

template <typename Call>
int errorOf(Call call) {
    return uninterrupted(call) < 0 ? errno : 0;
}

int openDirectory(const std::string& path, int& handle) {
    const char* const name = path.empty() ? "." : path.c_str();
    handle = uninterrupted([&] { return ::open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    return handle < 0 ? errno : 0;
}

/// Retries in intervals, because the system has no lock call with a timeout.
int lockWithin(int handle, std::chrono::milliseconds timeout) {
    constexpr std::chrono::milliseconds pause(10);
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        const int error = errorOf([&] { return ::flock(handle, LOCK_EX | LOCK_NB); });
        if (error != EWOULDBLOCK) {
            return error;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return ETIMEDOUT;
        }
        std::this_thread::sleep_for(pause);
    }
}

FileKind kindOf(const struct stat& status) {
    if (S_ISREG(status.st_mode)) {
        return FileKind::Regular;
    }
    return S_ISDIR(status.st_mode) ? FileKind::Directory : FileKind::Other;
}

} // namespace

FileLayer& FileLayer::disk() {
    static PosixFileLayer layer;
    return layer;
}

int PosixFileLayer::createFile(const std::string& path, Handle& handle) {
    handle = uninterrupted(
        [&] { return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, privateFile); });
    if (handle < 0) {
        return errno;
    }
    // A strict umask may have removed permissions that the owner needs.
    const int error = errorOf([&] { return ::fchmod(handle, privateFile); });
    if (error != 0) {
        ::close(handle);
        ::unlink(path.c_str());
    }
    return error;
}

int PosixFileLayer::openForReading(const std::string& path, Handle& handle, FileKind& kind, std::uint64_t& size) {
    handle = uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); });
    if (handle < 0) {
        return errno;
    }
    struct stat status {};
    const int error = errorOf([&] { return ::fstat(handle, &status); });
    if (error != 0) {
        ::close(handle);
        return error;
    }
    kind = kindOf(status);
    size = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

int PosixFileLayer::read(Handle handle, char* buffer, std::size_t room, std::size_t& count) {
    const ssize_t result = uninterrupted([&] { return ::read(handle, buffer, room); });
    count = result < 0 ? 0 : static_cast<std::size_t>(result);
    return result < 0 ? errno : 0;
}

int PosixFileLayer::write(Handle handle, std::string_view bytes, std::size_t& count) {
    const ssize_t result = uninterrupted([&] { return ::write(handle, bytes.data(), bytes.size()); });
    count = result < 0 ? 0 : static_cast<std::size_t>(result);
    return result < 0 ? errno : 0;
}

int PosixFileLayer::sync(Handle handle) {
    return errorOf([&] { return ::fsync(handle); });
}

int PosixFileLayer::close(Handle handle) {
    // The handle is closed even if the call was interrupted; a second call could close a handle of another thread.
    return ::close(handle) < 0 && errno != EINTR ? errno : 0;
}

int PosixFileLayer::rename(const std::string& from, const std::string& to) {
    return errorOf([&] { return std::rename(from.c_str(), to.c_str()); });
}

int PosixFileLayer::link(const std::string& existing, const std::string& name) {
    return errorOf([&] { return ::link(existing.c_str(), name.c_str()); });
}

int PosixFileLayer::unlink(const std::string& path) {
    return errorOf([&] { return ::unlink(path.c_str()); });
}

int PosixFileLayer::createDirectory(const std::string& path) {
    const int error = errorOf([&] { return ::mkdir(path.c_str(), privateDirectory); });
    if (error == 0) {
        return errorOf([&] { return ::chmod(path.c_str(), privateDirectory); });
    }
    int handle = -1;
    if (error != EEXIST || openDirectory(path, handle) != 0) {
        return error;
    }
    const int modeError = errorOf([&] { return ::fchmod(handle, privateDirectory); });
    close(handle);
    return modeError;
}

int PosixFileLayer::syncDirectory(const std::string& path) {
    int handle = -1;
    if (const int error = openDirectory(path, handle); error != 0) {
        return error;
    }
    const int error = sync(handle);
    close(handle);
    // Some network and user-space file systems cannot sync a directory.
    return error == EINVAL || error == ENOTSUP || error == ENOSYS ? 0 : error;
}

int PosixFileLayer::lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) {
    if (const int error = openDirectory(path, handle); error != 0) {
        return error;
    }
    const int error = lockWithin(handle, timeout);
    if (error == 0 || error == ENOLCK || error == ENOTSUP || error == ENOSYS) {
        return 0;
    }
    close(handle);
    return error;
}

} // namespace zel::storage
