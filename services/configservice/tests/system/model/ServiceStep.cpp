#include "ServiceStep.h"

#include "ByteSource.h"
#include "ChainStep.h"
#include "Vocabulary.h"

namespace config_model {

namespace {

using Kind = ServiceStep::Kind;

constexpr std::size_t mostSteps = 100;

// A kind that is listed more often is chosen more often.
constexpr Kind kinds[] = {
    Kind::Restart,
    Kind::Restart,
    Kind::Start,
    Kind::Start,
    Kind::Stop,
    Kind::Refresh,
    Kind::Refresh,
    Kind::PowerDown,
    Kind::ResetAllData,
    Kind::AddStore,
    Kind::AddStore,
    Kind::AddStore,
    Kind::AddStore,
    Kind::AddStore,
    Kind::UpdateStore,
    Kind::RemoveStore,
    Kind::RemoveStore,
    Kind::FindStore,
    Kind::SetConfig,
    Kind::RemoveAllCachedStores,
    Kind::SetMdmConfig,
    Kind::SetMdmConfig,
    Kind::GetConfig,
    Kind::GetValueOfStore,
    Kind::SetConfig,
    Kind::SetConfig,
    Kind::SetConfig,
    Kind::SetConfigMap,
    Kind::SetConfigMap,
    Kind::SetInMemoryConfig,
    Kind::ResetConfig,
    Kind::SetInMemoryConfig,
    Kind::ResetConfig,
    Kind::ResetStore,
    Kind::Provision,
    Kind::ResetProvisioning,
    Kind::SetKeySensitive,
    Kind::SetPolicy,
    Kind::SetPolicy,
    Kind::SetFipsMode,
};

Pairs readPairs(ByteSource& bytes, std::size_t most) {
    Pairs pairs;
    for (auto count = bytes.below(most + 1); count > 0; --count) {
        const auto& key = bytes.pick(vocabulary::serviceKeys);
        pairs.emplace_back(key, bytes.pick(vocabulary::serviceValues));
    }
    return pairs;
}

StoreShape readShape(ByteSource& bytes) {
    StoreShape shape;
    shape.name = bytes.pick(vocabulary::serviceStores);
    shape.priority = bytes.pick(vocabulary::priorities);
    const auto flags = bytes.below(16);
    shape.readOnly = flags != 0;
    shape.local = flags % 4 == 1;
    shape.caching = flags % 2 == 0;
    shape.pairs = readPairs(bytes, 4);
    return shape;
}

ServiceStep readStep(ByteSource& bytes) {
    ServiceStep step;
    step.kind = bytes.pick(kinds);
    switch (step.kind) {
    case Kind::UpdateStore:
        step.pairs = readPairs(bytes, 2);
        [[fallthrough]];
    case Kind::AddStore:
        step.store = readShape(bytes);
        break;
    case Kind::RemoveStore:
    case Kind::FindStore:
    case Kind::ResetStore:
        step.name = bytes.pick(vocabulary::serviceStores);
        break;
    case Kind::SetMdmConfig:
    case Kind::SetConfigMap:
        step.pairs = readPairs(bytes, 4);
        break;
    case Kind::GetConfig:
        step.flag = bytes.flip();
        step.key = bytes.pick(vocabulary::serviceKeys);
        break;
    case Kind::GetValueOfStore:
        step.name = bytes.pick(vocabulary::serviceStores);
        step.key = bytes.pick(vocabulary::serviceKeys);
        break;
    case Kind::SetConfig:
        step.key = bytes.pick(vocabulary::serviceKeys);
        step.value = bytes.pick(vocabulary::serviceValues);
        if (bytes.oneIn(8)) {
            step.key = L"PrimaryConfigStores";
            step.value = bytes.pick(vocabulary::records);
        }
        break;
    case Kind::SetInMemoryConfig:
    case Kind::SetPolicy:
        step.key = bytes.pick(vocabulary::serviceKeys);
        step.value = bytes.pick(vocabulary::serviceValues);
        break;
    case Kind::ResetConfig:
    case Kind::SetKeySensitive:
        step.key = bytes.pick(vocabulary::serviceKeys);
        break;
    case Kind::Provision:
        step.value = bytes.pick(vocabulary::urls);
        break;
    case Kind::SetFipsMode:
        step.flag = bytes.flip();
        break;
    case Kind::Restart:
    case Kind::Start:
    case Kind::Stop:
    case Kind::Refresh:
    case Kind::PowerDown:
    case Kind::ResetAllData:
    case Kind::RemoveAllCachedStores:
    case Kind::ResetProvisioning:
        break;
    }
    return step;
}

} // namespace

std::vector<ServiceStep> readServiceSteps(std::span<const std::uint8_t> bytes) {
    ByteSource source(bytes);
    std::vector<ServiceStep> steps;
    while (!source.isEmpty() && steps.size() < mostSteps) {
        steps.push_back(readStep(source));
    }
    return steps;
}

std::string describe(const ServiceStep& step) {
    const auto pair = narrow(step.key) + " = \"" + narrow(step.value) + '"';
    switch (step.kind) {
    case Kind::Restart:
        return "restart";
    case Kind::Start:
        return "start";
    case Kind::Stop:
        return "stop";
    case Kind::Refresh:
        return "refresh";
    case Kind::PowerDown:
        return "power down";
    case Kind::ResetAllData:
        return "reset all data";
    case Kind::AddStore:
        return "addConfigStore " + describe(step.store);
    case Kind::UpdateStore:
        return "updateExistingConfigStore " + describe(step.store) + ", old keys of " + describe(step.pairs);
    case Kind::RemoveStore:
        return "removeConfigStore " + step.name;
    case Kind::FindStore:
        return "isConfigStorePresent, getConfigStoreByName " + step.name;
    case Kind::RemoveAllCachedStores:
        return "removeAllCachedConfigStores";
    case Kind::SetMdmConfig:
        return "setMdmConfig " + describe(step.pairs);
    case Kind::GetConfig:
        return "getConfig " + narrow(step.key) + (step.flag ? " skipLocal" : "");
    case Kind::GetValueOfStore:
        return "getValueFromConfigStore " + step.name + " " + narrow(step.key);
    case Kind::SetConfig:
        return "setConfig " + pair;
    case Kind::SetConfigMap:
        return "setConfig " + describe(step.pairs);
    case Kind::SetInMemoryConfig:
        return "setInMemoryConfig " + pair;
    case Kind::ResetConfig:
        return "resetConfig " + narrow(step.key);
    case Kind::ResetStore:
        return "resetConfigData " + step.name;
    case Kind::Provision:
        return "setUrlProvisioningData " + narrow(step.value);
    case Kind::ResetProvisioning:
        return "resetAllowUriProvisioningData";
    case Kind::SetKeySensitive:
        return "setKeySensitive " + narrow(step.key);
    case Kind::SetPolicy:
        return "policy " + pair;
    case Kind::SetFipsMode:
        return step.flag ? "FIPS mode on" : "FIPS mode off";
    }
    return "";
}

} // namespace config_model
