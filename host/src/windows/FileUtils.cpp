#include "kyr/PlatformFiles.h"

#include <windows.h>

#include <cerrno>
#include <system_error>

namespace KyrCoreUtils::platform {

namespace {

int errorOf(BOOL result) {
    if (result != FALSE) {
        return 0;
    }
    const auto condition =
        std::error_code(static_cast<int>(::GetLastError()), std::system_category()).default_error_condition();
    return condition.category() == std::generic_category() ? condition.value() : EIO;
}

} // namespace

// Writes no access list: new entries inherit access for the user only from the user's folders.

int makeDirectory(const std::filesystem::path& path) noexcept {
    return errorOf(::CreateDirectoryW(path.c_str(), nullptr));
}

int removeFile(const std::filesystem::path& path) noexcept {
    return errorOf(::DeleteFileW(path.c_str()));
}

int moveFile(const std::filesystem::path& source, const std::filesystem::path& target, bool failIfExists) noexcept {
    const DWORD attributes = ::GetFileAttributesW(source.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return errorOf(FALSE);
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return EISDIR;
    }
    const DWORD replace = failIfExists ? 0 : MOVEFILE_REPLACE_EXISTING;
    return errorOf(
        ::MoveFileExW(source.c_str(), target.c_str(), replace | MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH));
}

int makePrivateFile(const std::filesystem::path& path) noexcept {
    const HANDLE file = ::CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return errorOf(FALSE);
    }
    ::CloseHandle(file);
    return 0;
}

} // namespace KyrCoreUtils::platform
