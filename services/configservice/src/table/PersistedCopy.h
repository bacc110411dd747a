#pragma once

#include <ConfigMap.h>

#include <array>
#include <cstddef>

namespace ZelUnified {

class ConfigEntry;
class ConfigTable;

/// A copy of a table as last written. It is notified of each change of the table and records the changed entries while
/// they are few and none has been removed, so that comparing and copying need not walk both tables. Has no lock.
class PersistedCopy {
public:
    PersistedCopy() = default;
    ~PersistedCopy();
    PersistedCopy(const PersistedCopy&) = delete;
    PersistedCopy& operator=(const PersistedCopy&) = delete;

    /// Records that `entry` was inserted or its value changed. The entry must stay at its address until noteRemoval().
    void noteStored(const ConfigEntry& entry) noexcept;
    /// Records that entries were removed or replaced.
    void noteRemoval() noexcept { anyMayDiffer = true; }

    /// Returns true if the table has the same entries; keys are compared case-sensitively. May sort the table.
    bool equals(ConfigTable& table) const;
    /// Copies the contents of the table, and zeroes the values that this overwrites.
    void bringUpToDate(ConfigTable& table);

private:
    static constexpr std::size_t limit = 64;

    void copyNamed();
    void copyAll(ConfigTable& table);

    ConfigMap values;
    std::array<const ConfigEntry*, limit> named{}; ///< The changed entries; unused if `anyMayDiffer`.
    std::size_t count = 0;
    bool anyMayDiffer = false;
};

} // namespace ZelUnified
