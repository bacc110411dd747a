#include "SystemError.h"

#include <windows.h>

#include <array>
#include <cerrno>

namespace zel::platform {

namespace {

struct Row {
    DWORD systemError;
    int number;
};

constexpr std::array rows{
    Row{ERROR_FILE_NOT_FOUND, ENOENT},
    Row{ERROR_PATH_NOT_FOUND, ENOENT},
    Row{ERROR_INVALID_DRIVE, ENOENT},
    Row{ERROR_BAD_NETPATH, ENOENT},
    Row{ERROR_BAD_NET_NAME, ENOENT},
    Row{ERROR_BAD_PATHNAME, ENOENT},
    Row{ERROR_INVALID_NAME, ENOENT},
    Row{ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG},
    Row{ERROR_TOO_MANY_OPEN_FILES, EMFILE},
    Row{ERROR_ACCESS_DENIED, EACCES},
    Row{ERROR_SHARING_VIOLATION, EBUSY},
    Row{ERROR_LOCK_VIOLATION, EBUSY},
    Row{ERROR_CURRENT_DIRECTORY, EACCES},
    Row{ERROR_WRITE_PROTECT, EROFS},
    Row{ERROR_NOT_ENOUGH_MEMORY, ENOMEM},
    Row{ERROR_OUTOFMEMORY, ENOMEM},
    Row{ERROR_INVALID_HANDLE, EBADF},
    Row{ERROR_FILE_EXISTS, EEXIST},
    Row{ERROR_ALREADY_EXISTS, EEXIST},
    Row{ERROR_DISK_FULL, ENOSPC},
    Row{ERROR_HANDLE_DISK_FULL, ENOSPC},
    Row{ERROR_BROKEN_PIPE, EPIPE},
    Row{ERROR_NO_DATA, EPIPE},
    Row{ERROR_DIR_NOT_EMPTY, ENOTEMPTY},
    Row{ERROR_DIRECTORY, ENOTDIR},
    Row{ERROR_NOT_SAME_DEVICE, EXDEV},
    Row{ERROR_INVALID_PARAMETER, EINVAL},
    Row{ERROR_NOT_SUPPORTED, ENOTSUP},
    Row{ERROR_INVALID_FUNCTION, ENOTSUP},
    Row{ERROR_CALL_NOT_IMPLEMENTED, ENOTSUP},
    Row{ERROR_OPERATION_ABORTED, EINTR},
};

} // namespace

int errnoOf(unsigned long systemError) noexcept {
    for (const Row& row : rows) {
        if (row.systemError == systemError) {
            return row.number;
        }
    }
    return EIO;
}

int lastErrno() noexcept {
    return errnoOf(::GetLastError());
}

} // namespace zel::platform
