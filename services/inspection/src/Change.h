#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace inspection {

/// A change of one property of a record, and its event as a line.
struct Change {
    std::chrono::system_clock::time_point time;
    std::wstring key;
    std::optional<std::wstring> oldName; ///< The old name of the key, if it was renamed.
    std::string property;
    std::wstring oldValue;
    std::wstring newValue;
    std::wstring storeName;
    bool secret = false; ///< The values must be masked.

    /// Returns the event. Masks a secret unless `showSecrets` is true.
    std::string toLine(bool showSecrets) const;
};

/// Returns the event that replaces `count` changes.
std::string makeLostLine(std::size_t count);

} // namespace inspection
