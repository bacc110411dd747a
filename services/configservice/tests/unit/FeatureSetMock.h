#pragma once

#include <ConfigFeatureSet.h>
#include <gmock/gmock.h>

namespace ZelUnified {

/// A mock of the store chain for stores and services.
class FeatureSetMock : public ConfigFeatureSet {
public:
    MOCK_METHOD(void, addConfigStore, (std::shared_ptr<ConfigStore>), (override));
    MOCK_METHOD(bool, removeConfigStore, (const std::string&), (override));
    MOCK_METHOD(bool, isConfigStorePresent, (const std::string&), (override));
    MOCK_METHOD(void, registerConfigStoreAddedObserver, (std::shared_ptr<ConfigStoreAddedObserver>), (override));
    MOCK_METHOD(void, unregisterConfigStoreAddedObserver, (std::shared_ptr<ConfigStoreAddedObserver>), (override));
    MOCK_METHOD(void, removeAllCachedConfigStores, (), (override));
    MOCK_METHOD(bool, getConfig, (const std::wstring&, std::wstring&, std::wstring&, bool&, bool), (override));
    MOCK_METHOD(bool, getConfig, (const std::wstring&, std::wstring&, bool), (override));
    MOCK_METHOD(bool, setConfig, (ConfigMap), (override));
    MOCK_METHOD(bool, setConfig, (const std::wstring&, const std::wstring&), (override));
    MOCK_METHOD(bool, setInMemoryConfig, (const std::wstring&, const std::wstring&), (override));
    MOCK_METHOD(void, setMdmConfig, (const std::string&), (override));
    MOCK_METHOD(void, resetConfig, (const std::wstring&), (override));
    MOCK_METHOD(bool, isKeySensitive, (const std::wstring&), (override));
    MOCK_METHOD(void, setKeySensitive, (const std::wstring&), (override));
    MOCK_METHOD(void, refreshConfigFeatureSet, (), (override));
    MOCK_METHOD(bool, setUrlProvisioningData, (std::wstring), (override));
    MOCK_METHOD(bool, resetAllowUriProvisioningData, (), (override));
    MOCK_METHOD(void, resetConfigData, (const std::string&), (override));
    MOCK_METHOD(void, addServiceEvent,
                (int, ConfigServiceIdsEnum::ConfigServiceIds, ServiceEventSeverityEnum::ServiceEventSeverity),
                (override));
    MOCK_METHOD(void, getAllConfigForPRT, (std::wstring&), (override));
    MOCK_METHOD(std::wstring, getValueFromConfigStore, (const std::string&, const std::wstring&), (override));
    MOCK_METHOD(std::shared_ptr<ConfigStore>, getConfigStoreByName, (const std::string&), (override));
};

} // namespace ZelUnified
