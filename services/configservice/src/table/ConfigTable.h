#pragma once

#include "ConfigEntry.h"
#include "EntryBlocks.h"
#include "FoldedKey.h"
#include "KeyFilter.h"
#include "KeyIndex.h"
#include "KeyList.h"

#include <ConfigMap.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZelUnified {

/// The keys and values of a store, listed in the order of a ConfigMap and found by an index without comparing keys on
/// the way. What leaves it is zeroed. Has no lock; the store guards it, but for mayHold(). Listing counts as a change,
/// since it puts in order what was stored since the last time.
class ConfigTable {
public:
    ConfigTable() = default;
    /// Takes the values over.
    explicit ConfigTable(ConfigMap values);
    ConfigTable(const ConfigTable&) = delete;
    ConfigTable& operator=(const ConfigTable&) = delete;

    /// False when the key is not held, which any thread may ask without the store's lock.
    bool mayHold(const FoldedKey& key) const noexcept { return filter.mayHold(key); }

    /// Empty when the key is not held. Good until the key's value changes or goes.
    std::optional<std::wstring_view> find(const FoldedKey& key) const noexcept {
        const auto* entry = index.find(key);
        return entry == nullptr ? std::nullopt : std::optional(entry->getValue());
    }

    /// Inserts or overwrites; a key that is held keeps its form. The entry stays in place until its key is
    /// removed, or the table cleared or replaced.
    const ConfigEntry& store(const std::wstring& key, std::wstring_view value);
    /// Takes up a key of a document, in lower case, unless it is held: then all stays as it is and the result is false.
    bool load(const FoldedKey& key, std::wstring_view value);
    /// True when the key was held.
    bool remove(const std::wstring& key);
    void clear() noexcept;
    /// Takes the values over and zeroes what they were in. Until something is stored, listing changes nothing.
    void replace(ConfigMap values);

    bool isEmpty() const noexcept { return entries.empty(); }
    /// In order. Good until the table changes.
    const std::vector<ConfigEntry::Owner>& list();
    /// In order.
    std::vector<std::wstring> getKeys();
    /// In order.
    KeyList listKeys();

private:
    const ConfigEntry& insert(const FoldedKey& key, ConfigEntry::Owner added);
    void reserveFilter(std::size_t keys);

    /// Of entries that came together. What a removed one took stays until the table is cleared or replaced.
    EntryBlocks blocks;
    std::vector<ConfigEntry::Owner> entries;
    std::size_t ordered = 0; ///< So many of the first entries stand in order.
    KeyIndex<ConfigEntry, KeyOfConfigEntry> index;
    KeyFilter filter;
};

} // namespace ZelUnified
