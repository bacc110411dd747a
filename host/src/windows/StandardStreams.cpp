#include <kyr/StandardStreams.h>

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>

namespace KyrCoreUtils {

namespace {

// A console rejects much longer texts.
constexpr std::size_t longestWrite = 16384;

int descriptorOf(StandardStreams::Stream stream) {
    return ::_fileno(stream == StandardStreams::Stream::Output ? stdout : stderr);
}

} // namespace

void StandardStreams::prepare() noexcept {
    // A closed stream has no number here that a file could get, and writing to a closed pipe is an ordinary error. Line
    // breaks are written unchanged.
    ::_setmode(descriptorOf(Stream::Output), _O_BINARY);
    ::_setmode(descriptorOf(Stream::Error), _O_BINARY);
}

int StandardStreams::write(Stream stream, std::string_view text) noexcept {
    const int descriptor = descriptorOf(stream);
    while (!text.empty()) {
        const auto length = static_cast<unsigned int>(std::min(text.size(), longestWrite));
        const int written = ::_write(descriptor, text.data(), length);
        if (written < 0) {
            // The C library reports EINVAL for a pipe without a reader.
            return errno == EINVAL ? EPIPE : errno;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

int StandardStreams::flush(Stream /*stream*/) noexcept {
    return 0;
}

bool StandardStreams::isTerminal(Stream stream) noexcept {
    return ::_isatty(descriptorOf(stream)) != 0;
}

bool StandardStreams::isPrivateFile(Stream /*stream*/) noexcept {
    return false;
}

std::size_t StandardStreams::getColumns(Stream stream) noexcept {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    const auto handle = ::GetStdHandle(stream == Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    if (!::GetConsoleScreenBufferInfo(handle, &info)) {
        return 0;
    }
    return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

} // namespace KyrCoreUtils
