#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace config_model {

using Pairs = std::vector<std::pair<std::wstring, std::wstring>>;

/// Folds ASCII only: the generators use nothing else.
template <class Character>
Character fold(Character character) {
    return character >= 'A' && character <= 'Z' ? static_cast<Character>(character - 'A' + 'a') : character;
}
bool isSame(std::wstring_view a, std::wstring_view b);
bool isSame(std::string_view a, std::string_view b);
bool isBefore(std::wstring_view a, std::wstring_view b);
std::wstring toSmallLetters(std::wstring_view text);
std::string narrow(std::wstring_view text);
std::wstring widen(std::string_view text);

/// The properties of a store, for the model and for the construction of the real store.
struct StoreShape {
    enum class Kind {
        Foreign, ///< A store of another service, with the flags below.
        Memory,
        UserFile,
        Defaults,
        Copy,
        Registry,
        DeviceManagement,
    };

    Kind kind = Kind::Foreign;
    std::string name{};
    int priority = 0;
    Pairs pairs{};
    bool readOnly = true;
    bool local = true;
    bool caching = false;
    bool refusesWrites = false;
};

/// A store as a sorted list with linear search.
class ModelStore {
public:
    explicit ModelStore(const StoreShape& form);

    /// If the key is missing, `value` is what such a store leaves in it, which may be non-empty in FIPS mode.
    bool getValue(const std::wstring& key, std::wstring& value, bool fips) const;
    bool storeValue(const std::wstring& key, const std::wstring& value);
    bool removeValue(const std::wstring& key);
    void removeAllValues();
    std::vector<std::wstring> getKeys() const;
    int getCachedPriority() const;

    StoreShape shape;
    bool destroyed = false;
    Pairs lastPersisted; ///< The last content of the store's file.

private:
    void put(const std::wstring& key, const std::wstring& value);
};

} // namespace config_model
