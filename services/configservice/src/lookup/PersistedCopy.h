#pragma once

#include <ConfigMap.h>

#include <array>
#include <cstddef>

namespace ZelUnified {

/// A table as it was last written. Told of each change of the table, it names the entries that differ while they are
/// few and none has gone, so that neither comparing nor copying walks both tables. Has no lock.
class PersistedCopy {
public:
    PersistedCopy() = default;
    ~PersistedCopy();
    PersistedCopy(const PersistedCopy&) = delete;
    PersistedCopy& operator=(const PersistedCopy&) = delete;

    /// An entry of the table that is new or was given a value. It stays in place until noteRemoval().
    void noteStored(const ConfigMap::value_type& entry) noexcept;
    /// Entries leave the table, or are others from now on.
    void noteRemoval() noexcept { anyMayDiffer = true; }

    /// Whether the table has the same entries, the case of keys included.
    bool equals(const ConfigMap& table) const;
    /// Takes over what the table holds, and zeroes the values that this replaces.
    void bringUpToDate(const ConfigMap& table);

private:
    static constexpr std::size_t limit = 64;

    void copyNamed();
    void copyAll(const ConfigMap& table);

    ConfigMap values;
    std::array<const ConfigMap::value_type*, limit> named{}; ///< Entries of the table, unless any may differ.
    std::size_t count = 0;
    bool anyMayDiffer = false;
};

} // namespace ZelUnified
