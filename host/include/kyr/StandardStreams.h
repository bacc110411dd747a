#pragma once

#include <zel/HostExport.h>

#include <cstddef>
#include <string_view>

namespace KyrCoreUtils {

/// Writes to standard output and standard error without a buffer and returns the cause of a failure. Never throws. Any
/// thread, except that prepare() must run before other threads exist.
class LUMORA_HOST_API StandardStreams {
public:
    enum class Stream { Output, Error };

    StandardStreams() = delete;

    /// Makes the streams safe to use. Afterwards a write to a closed pipe returns EPIPE instead of ending the process.
    /// A standard stream that was closed at the start is opened, so that no file of the process gets its number;
    /// writing to that standard output fails, writing to that standard error has no effect, and that standard input is
    /// at its end.
    static void prepare() noexcept;

    /// Writes all of `text`. Returns 0 or an errno value.
    static int write(Stream stream, std::string_view text) noexcept;
    /// Returns as an errno value a failure of earlier writes that the system reports only when a file is closed;
    /// returns 0 if there is none.
    static int flush(Stream stream) noexcept;

    /// Returns true if the stream is a terminal.
    static bool isTerminal(Stream stream) noexcept;
    /// Returns true if the stream is a regular file of the user that nobody else may read or write. On a platform with
    /// access lists the system and the administrators may, and the file may belong to them.
    static bool isPrivateFile(Stream stream) noexcept;
    /// Returns the width of the stream's terminal in characters; 0 if there is none or its width is unknown.
    static std::size_t getColumns(Stream stream) noexcept;
};

} // namespace KyrCoreUtils
