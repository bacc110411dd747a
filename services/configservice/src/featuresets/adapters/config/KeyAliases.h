#pragma once

#include <ConfigMap.h>

#include <string>

namespace ZelUnified {

/// Keys that changed their names: stores in the field may hold either one. Constant after construction, so any thread
/// reads it without a lock.
class KeyAliases {
public:
    KeyAliases();

    /// The new name of a key that is an old one; null for any other. Ignores case.
    const std::wstring* lookupKeyAlias(std::wstring_view key) const { return find(keyAliases, key); }
    /// The old name of a key that is a new one; null for any other. Ignores case.
    const std::wstring* lookupLegacyKey(std::wstring_view key) const { return find(legacyKeys, key); }

    /// Old names to new ones.
    const ConfigMap& getKeyAliases() const { return keyAliases; }

private:
    static const std::wstring* find(const ConfigMap& names, std::wstring_view key) {
        const auto found = names.find(key);
        return found == names.end() ? nullptr : &found->second;
    }

    ConfigMap keyAliases;
    ConfigMap legacyKeys;
};

} // namespace ZelUnified
