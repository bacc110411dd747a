#pragma once

#include "table/KeySuccessors.h"

#include <ConfigMap.h>

#include <string>

namespace ZelUnified {

/// Keys that changed their names: stores in the field may hold either one. Constant after construction, so any thread
/// reads it without a lock.
class KeyAliases {
public:
    KeyAliases();

    /// The new name of a key that is an old one; null for any other. Ignores case.
    const std::wstring* lookupKeyAlias(const FoldedKey& key) const noexcept { return keyAliases.find(key); }
    const std::wstring* lookupKeyAlias(const std::wstring& key) const { return lookupKeyAlias(FoldedKey(key)); }
    /// The old name of a key that is a new one; null for any other. Ignores case.
    const std::wstring* lookupLegacyKey(const FoldedKey& key) const noexcept { return legacyKeys.find(key); }
    const std::wstring* lookupLegacyKey(const std::wstring& key) const { return lookupLegacyKey(FoldedKey(key)); }

    /// Old names to new ones.
    const ConfigMap& getKeyAliases() const noexcept { return keyAliases.getMap(); }

private:
    KeySuccessors keyAliases;
    KeySuccessors legacyKeys;
};

} // namespace ZelUnified
