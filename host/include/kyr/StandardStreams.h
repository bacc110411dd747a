#pragma once

#include <zel/HostExport.h>

#include <cstddef>
#include <string_view>

namespace KyrCoreUtils {

/// What the process writes to standard output and to standard error, without a buffer and with the reason of a failure.
/// Nothing throws. Any thread, except that prepare() comes before other threads exist.
class LUMORA_HOST_API StandardStreams {
public:
    enum class Stream { Output, Error };

    StandardStreams() = delete;

    /// Makes the streams safe to use: a write to a closed pipe fails with EPIPE and ends nothing, and a standard stream
    /// that was closed at the start is occupied, so that no file of the process gets its number. Writing to standard
    /// output then fails, writing to standard error has no effect, and standard input is at its end.
    static void prepare() noexcept;

    /// Writes all of `text`. Returns 0 or an errno value.
    static int write(Stream stream, std::string_view text) noexcept;
    /// Returns a failure of earlier writes that the system reports only when a file is closed, as an errno value, or 0.
    static int flush(Stream stream) noexcept;

    /// Returns true if somebody sees what the stream writes.
    static bool isTerminal(Stream stream) noexcept;
    /// Returns the width of the stream's terminal in characters; 0 if there is none or its width is unknown.
    static std::size_t getColumns(Stream stream) noexcept;
};

} // namespace KyrCoreUtils
