#pragma once

#include <ConfigMap.h>

#include <array>
#include <cstddef>

namespace ZelUnified {

class ConfigEntry;
class ConfigTable;

/// A table as it was last written. Told of each change of the table, it names the entries that differ while they are
/// few and none has gone, so that neither comparing nor copying walks both tables. Has no lock.
class PersistedCopy {
public:
    PersistedCopy() = default;
    ~PersistedCopy();
    PersistedCopy(const PersistedCopy&) = delete;
    PersistedCopy& operator=(const PersistedCopy&) = delete;

    /// An entry of the table that is new or was given a value. It stays in place until noteRemoval().
    void noteStored(const ConfigEntry& entry) noexcept;
    /// Entries leave the table, or are others from now on.
    void noteRemoval() noexcept { anyMayDiffer = true; }

    /// Whether the table has the same entries, the case of keys included. May put the table in order.
    bool equals(ConfigTable& table) const;
    /// Takes over what the table holds, and zeroes the values that this replaces.
    void bringUpToDate(ConfigTable& table);

private:
    static constexpr std::size_t limit = 64;

    void copyNamed();
    void copyAll(ConfigTable& table);

    ConfigMap values;
    std::array<const ConfigEntry*, limit> named{}; ///< Entries of the table, unless any may differ.
    std::size_t count = 0;
    bool anyMayDiffer = false;
};

} // namespace ZelUnified
