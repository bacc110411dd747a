#pragma once

#include <kyr/StringUtils.h>

#include <ConfigFeatureSet.h>
#include <WipedText.h>

#include <string>
#include <string_view>

namespace fleet {

/// The value of a key in any store of the chain. It stays in force while the store that it came from is absent. Not
/// thread-safe.
class HeldCredential {
public:
    void update(ZelUnified::ConfigFeatureSet& configuration, std::wstring_view key) {
        if (!storeName.empty() && !configuration.getConfigStoreByName(storeName)) {
            return;
        }
        std::wstring read;
        std::wstring store;
        bool fromOldName = false;
        configuration.getConfig(std::wstring(key), read, store, fromOldName, false);
        auto trimmed = KyrCoreUtils::trim(read);
        value = KyrCoreUtils::toString(trimmed);
        storeName = KyrCoreUtils::toString(store);
        ZelUnified::WipedText::wipe(trimmed);
        ZelUnified::WipedText::wipe(read);
    }

    const ZelUnified::WipedText& get() const { return value; }

private:
    ZelUnified::WipedText value;
    std::string storeName; ///< Empty if no store contains the key.
};

} // namespace fleet
