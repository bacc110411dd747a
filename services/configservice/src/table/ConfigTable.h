#pragma once

#include "ConfigEntry.h"
#include "FoldedKey.h"
#include "KeyFilter.h"
#include "KeyIndex.h"
#include "KeyList.h"

#include <ConfigMap.h>

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZelUnified {

/// The keys and values of a store, listed in the order of a ConfigMap. An index finds a key without comparing other
/// keys. Zeroes each value that it removes. Has no lock: the store guards every operation except mayHold(). Listing
/// counts as a change, because it sorts the entries stored since the last listing.
class ConfigTable {
public:
    ConfigTable() = default;
    /// Constructs a table with the contents of `values`.
    explicit ConfigTable(ConfigMap values);
    ConfigTable(const ConfigTable&) = delete;
    ConfigTable& operator=(const ConfigTable&) = delete;

    /// Returns false only if the table does not contain the key. Any thread, without the store's lock.
    bool mayHold(const FoldedKey& key) const noexcept { return filter.mayHold(key); }

    /// Returns the value, or std::nullopt if the table does not contain the key. The view is valid until the value
    /// changes or is removed.
    std::optional<std::wstring_view> find(const FoldedKey& key) const noexcept {
        const auto* entry = index.find(key);
        return entry == nullptr ? std::nullopt : std::optional(entry->getValue());
    }

    /// Inserts or overwrites the value; an existing key keeps its spelling.
    void store(const std::wstring& key, std::wstring_view value);
    /// Inserts a key of a document, in lower case, and returns true. If the table already contains the key, changes
    /// nothing and returns false.
    bool load(const FoldedKey& key, std::wstring_view value);
    /// Removes the key. Returns true if the table contained it.
    bool remove(const std::wstring& key);
    void clear() noexcept;
    /// Replaces the contents with `values`, and zeroes the values in `values`. The table is then sorted, so listing
    /// changes nothing until the next store().
    void replace(ConfigMap values);

    bool isEmpty() const noexcept { return entries.empty(); }
    /// Returns the entries in order; valid until the table changes.
    const std::vector<ConfigEntry::Owner>& list();
    /// Returns copies of the keys in order.
    std::vector<std::wstring> getKeys();
    /// Returns the keys in order.
    KeyList listKeys();

private:
    using Arena = std::pmr::monotonic_buffer_resource;

    static std::unique_ptr<Arena> makeArena();
    void insert(const FoldedKey& key, ConfigEntry::Owner added);
    void reserveFilter(std::size_t keys);

    /// The memory of entries that are read together. The memory of a removed entry is not reused until the table is
    /// cleared or replaced. With one allocation for each entry a load takes half as long again at 500 keys in a
    /// document, and 16 % longer at 5,000.
    std::unique_ptr<Arena> arena = makeArena();
    std::vector<ConfigEntry::Owner> entries;
    std::size_t ordered = 0; ///< This many entries at the beginning are sorted.
    KeyIndex<ConfigEntry, KeyOfConfigEntry> index;
    KeyFilter filter;
};

} // namespace ZelUnified
