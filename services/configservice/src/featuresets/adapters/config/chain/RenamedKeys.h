#pragma once

#include "table/KeyNameMap.h"

#include <ConfigMap.h>

#include <string>

namespace ZelUnified {

/// The old and new names of the renamed keys of the catalogue. Existing stores may contain either name. Constant after
/// construction, so any thread may read it without a lock.
class RenamedKeys {
public:
    RenamedKeys();

    /// Returns the new name if `key` is an old name (case-insensitive), otherwise null.
    const std::wstring* findNewName(const FoldedKey& key) const noexcept { return newNames.find(key); }
    const std::wstring* findNewName(const std::wstring& key) const { return findNewName(FoldedKey(key)); }
    /// Returns the old name if `key` is a new name (case-insensitive), otherwise null.
    const std::wstring* findOldName(const FoldedKey& key) const noexcept { return oldNames.find(key); }
    const std::wstring* findOldName(const std::wstring& key) const { return findOldName(FoldedKey(key)); }

    /// Returns the map from old names to new names.
    const ConfigMap& getNewNames() const noexcept { return newNames.getMap(); }

private:
    KeyNameMap newNames;
    KeyNameMap oldNames;
};

} // namespace ZelUnified
