#pragma once

#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// The record of the cached copies of stores: the text of "PrimaryConfigStores", which contains an entry
/// `NAME:PRIORITY;` for each copy.
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
    bool canBeErasedByService(const std::wstring& storeName) const;
    const std::wstring& getText() const { return text; }

    /// Returns the path of the cached copy of this store. Returns nothing if the name would lead out of the folder of
    /// the copies: such a store has no copy.
    static std::optional<std::string> findCopyPath(const std::string& configDirectory, const std::string& storeName);

private:
    std::wstring text;
};

} // namespace lumora_config
