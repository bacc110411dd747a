#pragma once

#include "ModelStore.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace config_model {

/// One call on a chain with all its arguments. Members that a kind does not use are empty.
struct ChainStep {
    enum class Kind {
        AddStore,
        UpdateStore,
        RemoveStore,
        RemoveNonLocalStores,
        DestroyStores,
        FindStore,
        RegisterObserver,
        UnregisterObserver,
        RenewObserver,
        GetValue,
        GetValueOfStore,
        GetOriginalValue,
        SetKeySensitive,
        StoreValue,
        StoreValues,
        SetInMemoryValue,
        RemoveValue,
        SetUrlProvisioningData,
        ResetConfigData,
        ResetStore,
        RemoveAllCachedStores,
        RemoveCachedFiles,
        SetFipsMode,
        PlaceCachedFile,
    };

    Kind kind = Kind::GetValue;
    StoreShape store;
    std::string name;
    std::wstring key;
    std::wstring value;
    Pairs pairs;
    std::size_t number = 0;
    bool flag = false;
    /// Called by an observer during the announcement of this number, counted from 1.
    std::size_t nestedAt = 0;
    std::vector<ChainStep> nested;
};

std::vector<ChainStep> readChainSteps(std::span<const std::uint8_t> bytes);
std::string describe(const ChainStep& step);

std::string describe(const Pairs& pairs);
std::string describe(const StoreShape& shape);

} // namespace config_model
