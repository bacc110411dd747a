#pragma once

#include "RenamedKeys.h"
#include "StoreChain.h"

#include <string>

namespace ZelUnified {

/// Looks keys up in the chain. The new name of a key wins over its old name, whichever stores hold them. For one name,
/// the first store that contains it wins, even with an empty value.
///
/// Any thread. The owner holds the chain's lock, so that the results of one lookup are consistent.
class ConfigLookup {
public:
    ConfigLookup(const StoreChain& storeChain, const RenamedKeys& keys) : chain(storeChain), renamedKeys(keys) {}

    /// The name under which a lookup found the key: the requested name, or its new or old name.
    enum class FoundUnder { AskedName, NewName, OldName };

    /// Looks up one exact name. `skipLocal` leaves out the writable stores; a non-empty `storeFilter` leaves out all
    /// stores except the one it names. Returns true and sets `value` and `configStoreName` (which may be null) on a
    /// hit. On a miss returns false, clears `value` (the FIPS override may still set it) and leaves `configStoreName`
    /// unchanged. `key` must not refer to `value`.
    bool lookupInStores(const FoldedKey& key, std::wstring& value, std::wstring* configStoreName, bool skipLocal,
                        const std::string& storeFilter) const;

    /// Looks the key up under its new and old names. `valueFromLegacyKey` is only ever set to true; `foundUnder`
    /// changes only on a hit.
    bool getValue(const FoldedKey& key, std::wstring& value, std::wstring* configStoreName, bool& valueFromLegacyKey,
                  bool skipLocal, const std::string& storeFilter, FoundUnder& foundUnder) const;

    /// Reads the administrator's value, which applies without the user's settings. Returns true if a writable store
    /// that contains the key comes before the first read-only store with a value.
    bool getOriginalValue(const FoldedKey& key, std::wstring& originalValue, std::wstring& originalValueStoreName,
                          bool& fromLegacyKey) const;

private:
    bool findOriginalValue(const FoldedKey& key, std::wstring& originalValue, std::wstring& originalValueStoreName,
                           bool& found) const;

    const StoreChain& chain;
    const RenamedKeys& renamedKeys;
};

} // namespace ZelUnified
