#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace config_model {

using Pairs = std::vector<std::pair<std::wstring, std::wstring>>;

/// Upper and lower case fold for ASCII alone: the generators use nothing else.
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

/// What a store is like, for the model and for who makes the real one.
struct StoreShape {
    enum class Kind {
        Foreign, ///< Another service's, its flags as below.
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

/// A store as a sorted list that is searched from its front.
class ModelStore {
public:
    explicit ModelStore(const StoreShape& form);

    /// On a miss the value is what such a store leaves behind, which in the FIPS mode need not be nothing.
    bool getValue(const std::wstring& key, std::wstring& value, bool fips) const;
    bool storeValue(const std::wstring& key, const std::wstring& value);
    bool removeValue(const std::wstring& key);
    void removeAllValues();
    std::vector<std::wstring> getKeys() const;
    int getCachedPriority() const;

    StoreShape shape;
    bool destroyed = false;
    Pairs lastPersisted; ///< What went to the store's own file.

private:
    void put(const std::wstring& key, const std::wstring& value);
};

} // namespace config_model
