#pragma once

#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// The text of "PrimaryConfigStores", in which each cached store has an entry `NAME:PRIORITY;`.
class StoreRecord {
public:
    explicit StoreRecord(std::wstring recordText);

    /// The priority text of the store's entry, the name compared ignoring case. A later entry of the same name wins.
    struct Entry {
        std::wstring name;
        std::wstring priority;
    };
    std::optional<Entry> find(const std::wstring& storeName) const;
    /// The text without the entries of this store. All others stay as they are, pieces that are no entries included.
    std::wstring without(const std::wstring& storeName) const;
    /// The service cuts a store from the record at the first place where its name occurs, which may be inside of
    /// another store's entry. Returns whether that cut gives the same text as without().
    bool isCutAsWhole(const std::wstring& storeName) const;
    const std::wstring& getText() const { return text; }

private:
    std::wstring text;
};

} // namespace lumora_config
