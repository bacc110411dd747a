#include "ConfigLookup.h"

#include "secure/FipsValueOverride.h"
#include "secure/SecureString.h"

#include <kyr/StringUtils.h>

namespace ZelUnified {

bool ConfigLookup::lookupInStores(const FoldedKey& key, std::wstring& value, std::wstring* configStoreName,
                                  bool skipLocal, const std::string& storeFilter) const {
    bool found = false;
    value.clear();
    for (const auto walked = chain.getLinks(); const auto& store : *walked) {
        if (!store.mayAnswer(key)) {
            continue;
        }
        if (!storeFilter.empty() && !KyrCoreUtils::caseInsensitiveStringEquals(storeFilter, store->getName())) {
            continue;
        }
        if (skipLocal && !store->isReadOnly()) {
            continue;
        }
        if (store.getValue(key, value)) {
            if (configStoreName != nullptr) {
                *configStoreName = store.getWideName();
            }
            found = true;
            break;
        }
        value.clear();
    }
    zel::applyFipsValueOverride(key.getText(), value);
    return found;
}

bool ConfigLookup::getValue(const FoldedKey& key, std::wstring& value, std::wstring* configStoreName,
                            bool& valueFromLegacyKey, bool skipLocal, const std::string& storeFilter,
                            FoundUnder& foundUnder) const {
    if (const auto* newName = renamedKeys.findNewName(key)) {
        if (lookupInStores(FoldedKey(*newName), value, configStoreName, skipLocal, storeFilter)) {
            foundUnder = FoundUnder::NewName;
            return true;
        }
        if (!lookupInStores(key, value, configStoreName, skipLocal, storeFilter)) {
            return false;
        }
        valueFromLegacyKey = true;
        return true;
    }
    if (lookupInStores(key, value, configStoreName, skipLocal, storeFilter)) {
        return true;
    }
    const auto* oldName = renamedKeys.findOldName(key);
    if (oldName == nullptr || !lookupInStores(FoldedKey(*oldName), value, configStoreName, skipLocal, storeFilter)) {
        return false;
    }
    foundUnder = FoundUnder::OldName;
    valueFromLegacyKey = true;
    return true;
}

bool ConfigLookup::getOriginalValue(const FoldedKey& key, std::wstring& originalValue,
                                    std::wstring& originalValueStoreName, bool& fromLegacyKey) const {
    fromLegacyKey = false;
    bool found = false;
    if (const auto* newName = renamedKeys.findNewName(key)) {
        if (findOriginalValue(FoldedKey(*newName), originalValue, originalValueStoreName, found)) {
            return true;
        }
        fromLegacyKey = findOriginalValue(key, originalValue, originalValueStoreName, found);
        return fromLegacyKey;
    }
    const bool hasOverride = findOriginalValue(key, originalValue, originalValueStoreName, found);
    const auto* oldName = found ? nullptr : renamedKeys.findOldName(key);
    if (oldName == nullptr) {
        return hasOverride;
    }
    fromLegacyKey = findOriginalValue(FoldedKey(*oldName), originalValue, originalValueStoreName, found);
    return fromLegacyKey;
}

bool ConfigLookup::findOriginalValue(const FoldedKey& key, std::wstring& originalValue,
                                     std::wstring& originalValueStoreName, bool& found) const {
    std::wstring writableValue;
    std::wstring readOnlyValue;
    bool hasOverride = false;
    found = false;
    for (const auto walked = chain.getLinks(); const auto& store : *walked) {
        if (!writableValue.empty() && !readOnlyValue.empty()) {
            break;
        }
        if (!store.mayAnswer(key)) {
            continue;
        }
        if (!store->isReadOnly()) {
            if (writableValue.empty() && store.getValue(key, writableValue) && readOnlyValue.empty()) {
                hasOverride = true;
            }
        } else if (readOnlyValue.empty() && store.getValue(key, readOnlyValue)) {
            originalValueStoreName = store.getWideName();
            found = true;
        }
    }
    zel::SecureString::wipe(writableValue);
    originalValue = std::move(readOnlyValue);
    return hasOverride;
}

} // namespace ZelUnified
