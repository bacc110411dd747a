#pragma once

#include "ModelStore.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace config_model {

/// One call on the service with all its arguments. Members that a kind does not use are empty.
struct ServiceStep {
    enum class Kind {
        Restart,
        Start,
        Stop,
        Refresh,
        PowerDown,
        ResetAllData,
        AddStore,
        UpdateStore,
        RemoveStore,
        FindStore,
        RemoveAllCachedStores,
        SetMdmConfig,
        GetConfig,
        GetValueOfStore,
        SetConfig,
        SetConfigMap,
        SetInMemoryConfig,
        ResetConfig,
        ResetStore,
        Provision,
        ResetProvisioning,
        SetKeySensitive,
        SetPolicy,
        SetFipsMode,
    };

    Kind kind = Kind::GetConfig;
    StoreShape store;
    std::string name;
    std::wstring key;
    std::wstring value;
    Pairs pairs;
    bool flag = false;
};

std::vector<ServiceStep> readServiceSteps(std::span<const std::uint8_t> bytes);
std::string describe(const ServiceStep& step);

} // namespace config_model
