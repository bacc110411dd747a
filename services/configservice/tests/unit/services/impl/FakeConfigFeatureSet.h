#pragma once

#include <ConfigFeatureSet.h>
#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace configservice_test {

/// The store chain with results that a test sets.
class FakeConfigFeatureSet : public ZelUnified::ConfigFeatureSet {
public:
    MOCK_METHOD(void, addConfigStore, (std::shared_ptr<ZelUnified::ConfigStore>), (override));
    MOCK_METHOD(bool, removeConfigStore, (const std::string&), (override));
    MOCK_METHOD(bool, isConfigStorePresent, (const std::string&), (override));
    MOCK_METHOD(void, registerConfigStoreAddedObserver, (std::shared_ptr<ZelUnified::ConfigStoreAddedObserver>),
                (override));
    MOCK_METHOD(void, unregisterConfigStoreAddedObserver, (std::shared_ptr<ZelUnified::ConfigStoreAddedObserver>),
                (override));
    MOCK_METHOD(void, removeAllCachedConfigStores, (), (override));
    MOCK_METHOD(bool, getConfig, (const std::wstring&, std::wstring&, std::wstring&, bool&, bool), (override));
    MOCK_METHOD(bool, getConfig, (const std::wstring&, std::wstring&, bool), (override));
    MOCK_METHOD(bool, setConfig, (ZelUnified::ConfigMap), (override));
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
                (int, ZelUnified::ConfigServiceIdsEnum::ConfigServiceIds,
                 ZelUnified::ServiceEventSeverityEnum::ServiceEventSeverity),
                (override));
    MOCK_METHOD(void, getAllConfigForPRT, (std::wstring&), (override));
    MOCK_METHOD(std::wstring, getValueFromConfigStore, (const std::string&, const std::wstring&), (override));
    MOCK_METHOD(std::shared_ptr<ZelUnified::ConfigStore>, getConfigStoreByName, (const std::string&), (override));
};

} // namespace configservice_test
