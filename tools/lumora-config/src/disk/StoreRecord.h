#pragma once

#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// Parses the text of "PrimaryConfigStores", which contains an entry `NAME:PRIORITY;` for each cached store.
class StoreRecord {
public:
    explicit StoreRecord(std::wstring recordText);

    /// The entry of a store, found by case-insensitive name. If entries repeat, the last priority wins.
    struct Entry {
        std::wstring name;
        std::wstring priority;
    };
    std::optional<Entry> find(const std::wstring& storeName) const;
    /// Returns the text without the entries of this store. All other parts are unchanged, including malformed ones.
    std::wstring without(const std::wstring& storeName) const;
    /// Returns true if the service's way of removing the store gives the same text as without(). The service erases the
    /// entry at the first occurrence of the name, which may be inside the entry of another store.
    bool isCutAsWhole(const std::wstring& storeName) const;
    const std::wstring& getText() const { return text; }

private:
    std::wstring text;
};

} // namespace lumora_config
