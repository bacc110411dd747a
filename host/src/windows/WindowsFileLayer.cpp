#include "WindowsFileLayer.h"

#include "AccessRights.h"
#include "Retry.h"
#include "SystemError.h"
#include "SystemHandle.h"
#include "kyr/PathText.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <new>
#include <thread>

namespace zel::storage {

namespace {

using platform::AccessRights;
using platform::deniedReplacement;
using platform::lastErrno;
using platform::SystemHandle;
using platform::whileShared;

constexpr DWORD sharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Calls `use` with the path, or returns EINVAL for a text that is no path.
template <class Use>
int withPath(const std::string& text, Use use) {
    try {
        const auto path = KyrCoreUtils::pathFromText(text);
        return path ? use(*path) : EINVAL;
    } catch (const std::bad_alloc&) {
        return ENOMEM;
    } catch (...) {
        return EINVAL;
    }
}

/// Passes the file to a descriptor, which the caller closes.
int toDescriptor(SystemHandle file, int flags, int& descriptor) {
    descriptor = ::_open_osfhandle(reinterpret_cast<std::intptr_t>(file.get()), flags | _O_BINARY | _O_NOINHERIT);
    if (descriptor < 0) {
        return errno;
    }
    file.release();
    return 0;
}

HANDLE systemHandleOf(int descriptor) {
    return reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor));
}

unsigned int lengthOfCall(std::size_t size) {
    constexpr std::size_t most = std::numeric_limits<int>::max();
    return static_cast<unsigned int>(std::min(size, most));
}

/// Opens the file without sharing it; the system removes it when it is closed.
SystemHandle openAlone(const std::filesystem::path& path) {
    return SystemHandle(::CreateFileW(path.c_str(), GENERIC_WRITE, 0,
                                      AccessRights::forCreation(AccessRights::Kind::File), OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
}

} // namespace

FileLayer& FileLayer::disk() {
    static WindowsFileLayer layer;
    return layer;
}

int WindowsFileLayer::createFile(const std::string& path, Handle& handle) {
    handle = -1;
    return withPath(path, [&](const std::filesystem::path& name) {
        // With the flag a dangling link is a name that exists; without it, its target would be created.
        SystemHandle file(::CreateFileW(name.c_str(), GENERIC_WRITE, sharedWithAll,
                                        AccessRights::forCreation(AccessRights::Kind::File), CREATE_NEW,
                                        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        return file ? toDescriptor(std::move(file), _O_WRONLY, handle) : lastErrno();
    });
}

int WindowsFileLayer::openForReading(const std::string& path, Handle& handle, FileKind& kind, std::uint64_t& size) {
    handle = -1;
    return withPath(path, [&](const std::filesystem::path& name) {
        // The flag allows directories to be opened, so that they are recognised.
        SystemHandle file;
        whileShared([&]() -> BOOL {
            file = SystemHandle(::CreateFileW(name.c_str(), GENERIC_READ, sharedWithAll, nullptr, OPEN_EXISTING,
                                              FILE_FLAG_BACKUP_SEMANTICS, nullptr));
            return file ? TRUE : FALSE;
        });
        if (!file) {
            return lastErrno();
        }
        BY_HANDLE_FILE_INFORMATION information{};
        if (::GetFileType(file.get()) != FILE_TYPE_DISK) {
            kind = FileKind::Other;
        } else if (!::GetFileInformationByHandle(file.get(), &information)) {
            return lastErrno();
        } else {
            const bool isDirectory = (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            kind = isDirectory ? FileKind::Directory : FileKind::Regular;
        }
        size = (std::uint64_t{information.nFileSizeHigh} << 32U) | information.nFileSizeLow;
        return toDescriptor(std::move(file), _O_RDONLY, handle);
    });
}

int WindowsFileLayer::read(Handle handle, char* buffer, std::size_t room, std::size_t& count) {
    const int result = ::_read(handle, buffer, lengthOfCall(room));
    count = result < 0 ? 0 : static_cast<std::size_t>(result);
    return result < 0 ? errno : 0;
}

int WindowsFileLayer::write(Handle handle, std::string_view bytes, std::size_t& count) {
    const int result = ::_write(handle, bytes.data(), lengthOfCall(bytes.size()));
    count = result < 0 ? 0 : static_cast<std::size_t>(result);
    return result < 0 ? errno : 0;
}

int WindowsFileLayer::sync(Handle handle) {
    return ::FlushFileBuffers(systemHandleOf(handle)) ? 0 : lastErrno();
}

int WindowsFileLayer::close(Handle handle) {
    return ::_close(handle) < 0 ? errno : 0;
}

int WindowsFileLayer::rename(const std::string& from, const std::string& to) {
    return withPath(from, [&](const std::filesystem::path& source) {
        return withPath(to, [&](const std::filesystem::path& target) {
            constexpr DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
            const bool done = whileShared([&] { return ::MoveFileExW(source.c_str(), target.c_str(), how); },
                                          deniedReplacement(target.c_str()));
            return done ? 0 : lastErrno();
        });
    });
}

int WindowsFileLayer::link(const std::string& existing, const std::string& name) {
    return withPath(existing, [&](const std::filesystem::path& source) {
        return withPath(name, [&](const std::filesystem::path& target) {
            if (::CreateHardLinkW(target.c_str(), source.c_str(), nullptr)) {
                return 0;
            }
            const int error = lastErrno();
            std::error_code failure;
            return error == EACCES && std::filesystem::is_directory(source, failure) ? EPERM : error;
        });
    });
}

int WindowsFileLayer::unlink(const std::string& path) {
    return withPath(path, [](const std::filesystem::path& name) {
        return whileShared([&] { return ::DeleteFileW(name.c_str()); }) ? 0 : lastErrno();
    });
}

int WindowsFileLayer::createDirectory(const std::string& path) {
    return withPath(path, [](const std::filesystem::path& name) {
        if (::CreateDirectoryW(name.c_str(), AccessRights::forCreation(AccessRights::Kind::Directory))) {
            return 0;
        }
        const int error = lastErrno();
        std::error_code failure;
        if (error != EEXIST || !std::filesystem::is_directory(name, failure)) {
            return error;
        }
        return AccessRights::restrict(name, AccessRights::Kind::Directory);
    });
}

int WindowsFileLayer::syncDirectory(const std::string& /*path*/) {
    return 0;
}

int WindowsFileLayer::lockDirectory(const std::string& path, std::chrono::milliseconds timeout, Handle& handle) {
    handle = -1;
    return withPath(path.empty() ? "." : path, [&](const std::filesystem::path& directory) {
        constexpr std::chrono::milliseconds pause(10);
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        for (;;) {
            SystemHandle file = openAlone(directory / ".lock");
            if (file) {
                return toDescriptor(std::move(file), _O_WRONLY, handle);
            }
            const int error = lastErrno();
            // A file that is being removed denies the access for a moment.
            if (error != EBUSY && error != EACCES) {
                return error;
            }
            if (std::chrono::steady_clock::now() >= deadline) {
                return error == EBUSY ? ETIMEDOUT : error;
            }
            std::this_thread::sleep_for(pause);
        }
    });
}

} // namespace zel::storage
