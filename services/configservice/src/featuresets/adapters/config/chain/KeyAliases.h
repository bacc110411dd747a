#pragma once

#include "table/KeySuccessors.h"

#include <ConfigMap.h>

#include <string>

namespace ZelUnified {

/// The old and new names of keys that were renamed. Existing stores may contain either name. Constant after
/// construction, so any thread may read it without a lock.
class KeyAliases {
public:
    KeyAliases();

    /// Returns the new name if `key` is an old name (case-insensitive), otherwise null.
    const std::wstring* lookupKeyAlias(const FoldedKey& key) const noexcept { return keyAliases.find(key); }
    const std::wstring* lookupKeyAlias(const std::wstring& key) const { return lookupKeyAlias(FoldedKey(key)); }
    /// Returns the old name if `key` is a new name (case-insensitive), otherwise null.
    const std::wstring* lookupLegacyKey(const FoldedKey& key) const noexcept { return legacyKeys.find(key); }
    const std::wstring* lookupLegacyKey(const std::wstring& key) const { return lookupLegacyKey(FoldedKey(key)); }

    /// Returns the map from old names to new names.
    const ConfigMap& getKeyAliases() const noexcept { return keyAliases.getMap(); }

private:
    KeySuccessors keyAliases;
    KeySuccessors legacyKeys;
};

} // namespace ZelUnified
