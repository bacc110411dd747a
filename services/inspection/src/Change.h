#pragma once

#include <ConfigRecordObserver.h>

#include <chrono>
#include <cstddef>
#include <string>

namespace inspection {

/// A change of one record: one event for each property that differs.
struct Change {
    std::chrono::system_clock::time_point time;
    std::wstring key;
    ZelUnified::ConfigRecordState before;
    ZelUnified::ConfigRecordState after;
    bool secret = false; ///< The values must be masked.

    std::size_t countEvents() const;
    /// Returns the events, each one as a line. Masks a secret unless `showSecrets` is true.
    std::string toLines(bool showSecrets) const;
};

/// Returns the event that replaces `count` events.
std::string makeLostLine(std::size_t count);

} // namespace inspection
