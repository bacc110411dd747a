#pragma once

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>
#include <ConfigChainView.h>
#include <ConfigFeatureSet.h>
#include <ConfigKeys.h>

#include <string>

namespace ZelUnified {

/// Marks the policies whose name contains "connectionpassword", in any case, as sensitive. The policies' store does so
/// itself whenever it is refreshed, but not when it is read first: there is no feature set yet. Any thread.
inline void markSensitivePolicies(ConfigFeatureSet& featureSet) {
    auto* const chain = dynamic_cast<ConfigChainView*>(&featureSet);
    if (chain == nullptr) {
        return;
    }
    for (const auto& store : chain->getConfigStores()) {
        if (store->getName() != ConfigKeys::registryConfigStore) {
            continue;
        }
        for (const auto& key : store->getKeys()) {
            if (KyrCoreUtils::caseInsensitiveFind(key, ConfigKeys::connectionPassword) >= 0) {
                featureSet.setKeySensitive(key);
            }
        }
    }
}

/// Marks the keys with `KeyRow::markedByService`: the profile may contain their values although the service that marks
/// them is not installed. Also calls markSensitivePolicies(). A host or a service calls it before it shows values. Any
/// thread.
inline void markSensitiveKeys(ConfigFeatureSet& featureSet) {
    for (const auto& row : ConfigKeys::keys) {
        if (row.markedByService) {
            featureSet.setKeySensitive(std::wstring(row.name));
        }
    }
    markSensitivePolicies(featureSet);
}

} // namespace ZelUnified
