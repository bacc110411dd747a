#pragma once

#include "ConfigChange.h"
#include "KeyAliases.h"
#include "StoreChain.h"

#include <string>

namespace ZelUnified {

/// How a key becomes a value: name first, chain second. The new name of a key wins over its old one wherever in the
/// chain each stands; the first store that answers wins, and an empty value is an answer.
/// Any thread; the owner holds the chain's lock so that the answers of one lookup belong together.
class ConfigLookup {
public:
    ConfigLookup(const StoreChain& storeChain, const KeyAliases& aliases) : chain(storeChain), keyAliases(aliases) {}

    /// Which name of a key a lookup ended at: the one asked for, or the other one.
    enum class FoundUnder { AskedName, NewName, OldName };

    /// The walk for one exact name. `skipLocal` leaves out the writable stores, a filter all stores but the one it
    /// names. On a miss `value` is empty (but for the FIPS override) and `configStoreName`, which
    /// may be null, as it was. `key` must not view `value`.
    bool lookupInStores(const FoldedKey& key, std::wstring& value, std::wstring* configStoreName, bool skipLocal,
                        const std::string& storeFilter) const;

    /// The lookup under new and old names. `valueFromLegacyKey` is only ever set, `foundUnder` only on a hit.
    bool getValue(const FoldedKey& key, std::wstring& value, std::wstring* configStoreName, bool& valueFromLegacyKey,
                  bool skipLocal, const std::string& storeFilter, FoundUnder& foundUnder) const;

    /// What an administrator's source says beneath the user's settings. The result is whether a writable store that
    /// holds the key stands ahead of the first read-only one with a value.
    bool getOriginalValue(const FoldedKey& key, std::wstring& originalValue, std::wstring& originalValueStoreName,
                          bool& fromLegacyKey) const;

    /// getValue() and getOriginalValue() in one walk, and whether the one overrides the other. `change` comes empty.
    /// False, and nothing read, where one walk could tell something else: the key has another name, FIPS mode overrides
    /// it, or a store of another service must be asked as often as before.
    bool readInOneWalk(const FoldedKey& key, ConfigChange& change) const;

private:
    bool findOriginalValue(const FoldedKey& key, std::wstring& originalValue, std::wstring& originalValueStoreName,
                           bool& found) const;

    const StoreChain& chain;
    const KeyAliases& keyAliases;
};

} // namespace ZelUnified
