#pragma once

#include <ConfigMap.h>

#include <array>
#include <cstddef>

namespace ZelUnified {

/// Which entries of a table differ from a copy of it, so that bringing the copy up to date need not walk both. Knows
/// them while they are few and none has gone; then any entry may differ, and the tables are compared. Has no lock.
class ChangedEntries {
public:
    /// An entry that is new, or has another value than before.
    void add(const ConfigMap::value_type& entry) noexcept;
    /// Before an entry goes.
    void addAny() noexcept { anyDiffers = true; }

    /// Whether both tables have the same entries, the case of keys included.
    bool isUpToDate(const ConfigMap& copy, const ConfigMap& table) const;
    /// Makes `copy` equal to `table`, and zeroes the values that leave it. Nothing differs then.
    void bringUpToDate(ConfigMap& copy, const ConfigMap& table);

private:
    static constexpr std::size_t limit = 64;

    std::array<const ConfigMap::value_type*, limit> entries{}; ///< Of the table, each in it still.
    std::size_t count = 0;
    bool anyDiffers = false;
};

} // namespace ZelUnified
