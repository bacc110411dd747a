#pragma once

#include <zel/HostExport.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace KyrCoreUtils {

/// A connection to a process of the same user that listens on a local socket; sends and receives lines. One thread.
class LUMORA_HOST_API LocalConnection {
public:
    /// The outcome of receiving a line.
    enum class Received {
        Line,
        End, ///< The other process closed the connection, or it failed.
        Timeout,
        Signal ///< A signal asked this process to end (see EndSignals).
    };

    /// Connects, or fails: see isOpen(). Refuses a listener of another user.
    explicit LocalConnection(const std::string& path);
    ~LocalConnection();
    LocalConnection(const LocalConnection&) = delete;
    LocalConnection& operator=(const LocalConnection&) = delete;

    bool isOpen() const noexcept { return descriptor >= 0; }
    /// Returns the id of the other process; 0 if it is unknown.
    long getPeer() const noexcept { return peer; }
    /// Sends the text and a line feed. Returns false if the connection fails or the other process does not read for the
    /// time of `timeout`.
    bool sendLine(std::string_view text, std::chrono::milliseconds timeout);
    /// Waits for the next line and sets `line` to it, without the line feed. Without `timeout` it waits for ever.
    Received receiveLine(std::string& line, std::optional<std::chrono::milliseconds> timeout);
    /// Waits until the other process has closed the connection, without reading. Returns false on a timeout.
    bool awaitEnd(std::chrono::milliseconds timeout) const;

private:
    bool extractLine(std::string& line);

    int descriptor = -1;
    long peer = 0;
    std::string buffered;
    std::size_t searched = 0; ///< Bytes of `buffered` without a line feed.
};

} // namespace KyrCoreUtils
