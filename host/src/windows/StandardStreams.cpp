#include "FileSecurity.h"
#include "SystemError.h"

#include <kyr/StandardStreams.h>
#include <kyr/StringUtils.h>

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <new>

namespace KyrCoreUtils {

namespace {

// A console rejects much longer texts.
constexpr std::size_t longestWrite = 16384;

int descriptorOf(StandardStreams::Stream stream) {
    return stream == StandardStreams::Stream::Output ? 1 : 2;
}

HANDLE handleOf(StandardStreams::Stream stream) {
    return ::GetStdHandle(stream == StandardStreams::Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

/// A console takes UTF-16, whatever its code page is.
int writeToConsole(HANDLE console, std::string_view text) noexcept {
    try {
        const std::wstring wide = toWideString(text);
        for (std::size_t at = 0; at < wide.size();) {
            const auto length = static_cast<DWORD>(std::min(wide.size() - at, longestWrite));
            DWORD written = 0;
            if (!::WriteConsoleW(console, wide.data() + at, length, &written, nullptr)) {
                return zel::platform::lastErrno();
            }
            at += written;
        }
        return 0;
    } catch (const std::bad_alloc&) {
        return ENOMEM;
    }
}

int writeBytes(HANDLE file, std::string_view text) noexcept {
    while (!text.empty()) {
        const auto length = static_cast<DWORD>(std::min(text.size(), longestWrite));
        DWORD written = 0;
        if (!::WriteFile(file, text.data(), length, &written, nullptr)) {
            return zel::platform::lastErrno();
        }
        text.remove_prefix(written);
    }
    return 0;
}

} // namespace

void StandardStreams::prepare() noexcept {
    // A closed stream has no number here that a file could get, and writing to a closed pipe is an ordinary error. Line
    // breaks are written unchanged.
    ::_setmode(descriptorOf(Stream::Output), _O_BINARY);
    ::_setmode(descriptorOf(Stream::Error), _O_BINARY);
}

int StandardStreams::write(Stream stream, std::string_view text) noexcept {
    const HANDLE handle = handleOf(stream);
    DWORD mode = 0;
    return ::GetConsoleMode(handle, &mode) ? writeToConsole(handle, text) : writeBytes(handle, text);
}

int StandardStreams::flush(Stream /*stream*/) noexcept {
    return 0;
}

bool StandardStreams::isTerminal(Stream stream) noexcept {
    DWORD mode = 0;
    return ::GetConsoleMode(handleOf(stream), &mode) != FALSE;
}

bool StandardStreams::isPrivateFile(Stream stream) noexcept {
    const HANDLE handle = handleOf(stream);
    if (::GetFileType(handle) != FILE_TYPE_DISK) {
        return false;
    }
    try {
        const auto access = zel::platform::FileSecurity::read(handle).describe();
        // Not only Owner::Self: a file to which a shell with the rights of an administrator redirects the output
        // belongs to the group of administrators.
        return access.owner != FileAccess::Owner::Other && !access.usableByOthers;
    } catch (...) {
        return false;
    }
}

std::size_t StandardStreams::getColumns(Stream stream) noexcept {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!::GetConsoleScreenBufferInfo(handleOf(stream), &info)) {
        return 0;
    }
    return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

} // namespace KyrCoreUtils
