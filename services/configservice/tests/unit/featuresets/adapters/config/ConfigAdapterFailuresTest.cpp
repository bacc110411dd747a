#include "ConfigAdapterFixture.h"
#include "featuresets/adapters/config/chain/FailingConfigStore.h"

#include <LocalFileConfigStore.h>

#include <ostream>
#include <string_view>

namespace ZelUnified {

namespace {

/// An operation of the feature set, and what a store of another service throws at meanwhile.
struct FailureCase {
    const char* name;
    const char* failing;
    void (*call)(ConfigAdapter& adapter);
};

std::ostream& operator<<(std::ostream& out, const FailureCase& tried) {
    return out << tried.name;
}

const FailureCase failureCases[] = {
    {"destroy", "destroy", [](auto& adapter) { adapter.Destroy(); }},
    {"addStore", "getValue k",
     [](auto& adapter) {
         adapter.addConfigStore(makeReadOnlyStore("Other", 50, {{L"k", L"v"}}));
     }},
    {"removeStore", "getKeys", [](auto& adapter) { adapter.removeConfigStore("Failing"); }},
    {"isStorePresent", "getName", [](auto& adapter) { adapter.isConfigStorePresent("Failing"); }},
    {"getStoreByName", "getName", [](auto& adapter) { adapter.getConfigStoreByName("Failing"); }},
    {"getConfig", "getValue",
     [](auto& adapter) {
         std::wstring value;
         adapter.getConfig(L"k", value, false);
     }},
    {"getValueFromStore", "getValue", [](auto& adapter) { adapter.getValueFromConfigStore("Failing", L"k"); }},
    {"setConfig", "storeValue", [](auto& adapter) { adapter.setConfig(L"k", L"v"); }},
    {"setConfigs", "storeValue",
     [](auto& adapter) {
         adapter.setConfig({{L"k", L"v"}});
     }},
    {"setInMemoryConfig", "getValue k", [](auto& adapter) { adapter.setInMemoryConfig(L"k", L"v"); }},
    {"setMdmConfig", "getValue k", [](auto& adapter) { adapter.setMdmConfig("<a><b><k>v</k></b></a>"); }},
    {"resetConfig", "removeValue", [](auto& adapter) { adapter.resetConfig(L"k"); }},
    {"resetConfigData", "removeAllValues", [](auto& adapter) { adapter.resetConfigData("Failing"); }},
    {"provision", "storeValue", [](auto& adapter) { adapter.setUrlProvisioningData(L"?ServicesDomain=example.com"); }},
    {"setEnabledServices", "getValue Telephony_Enabled", [](auto& adapter) { adapter.SetEnabledServices(); }},
    {"refreshStores", "isLocal", [](auto& adapter) { adapter.refreshConfigFeatureSet(); }},
    {"refreshUser", "getValue u", [](auto& adapter) { adapter.refreshConfigFeatureSet(); }},
    {"refreshPolicies", "getValue p", [](auto& adapter) { adapter.refreshConfigFeatureSet(); }},
    {"report", "getKeys",
     [](auto& adapter) {
         std::wstring report;
         adapter.getAllConfigForPRT(report);
     }},
    {"reset", "removeAllValues", [](auto& adapter) { adapter.InvokeResetData(ResetDataOptionEnum::ResetAll); }},
};

} // namespace

class ConfigAdapterFailures : public ConfigAdapterFixture, public testing::WithParamInterface<FailureCase> {};

TEST_P(ConfigAdapterFailures, AnExceptionOfAStoreReachesTheCaller) {
    loadAndStart();
    // Only the refresh reads these two.
    givenPolicy(L"p", L"v");
    LocalFileConfigStore written("LocalFileConfigStore", 20, false);
    written.storeValue(L"u", L"v");
    written.persistValues();
    const auto store = std::make_shared<FailingConfigStore>("Failing", 10, ConfigMap{{L"own", L"v"}});
    // Some lookups skip writable stores.
    store->store.readOnly = std::string_view(GetParam().failing).starts_with("getValue");
    adapter->addConfigStore(store);
    *store->failing = GetParam().failing;
    EXPECT_THROW(GetParam().call(*adapter), StoreFailure);
    store->failing->clear();
}

INSTANTIATE_TEST_SUITE_P(EachOperation, ConfigAdapterFailures, testing::ValuesIn(failureCases),
                         [](const auto& tried) { return tried.param.name; });

} // namespace ZelUnified
