#pragma once

#include <chrono>
#include <cstddef>

namespace inspection {

/// The limits that protect the client from other processes.
struct InspectionLimits {
    std::size_t requestBytes = std::size_t{1024} * 1024;
    std::size_t connections = 256;
    /// The values of one `load`, which may take several requests.
    std::size_t stagedBytes = std::size_t{64} * 1024 * 1024;
    /// A watcher that reads too slowly misses changes beyond these.
    std::size_t queuedEvents = 1000;
    std::size_t queuedBytes = std::size_t{4} * 1024 * 1024;
    /// The time for which the distribution waits until a watcher with a full queue has read enough of it.
    std::chrono::milliseconds catchUpTime{2000};
    /// Changes that the socket's thread has not begun to distribute; it distributes up to as many others.
    std::size_t queuedChanges = 16384;
    /// The time for a whole request, from the connection or the first byte on.
    std::chrono::milliseconds requestTime{10000};
    /// The time between two requests, unless the connection watches.
    std::chrono::milliseconds idleTime{300000};
    /// The time in which a reply must be read.
    std::chrono::milliseconds replyTime{30000};
};

} // namespace inspection
