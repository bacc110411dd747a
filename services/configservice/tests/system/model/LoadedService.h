#pragma once

#include "RecordObserver.h"
#include "Service.h"
#include "featuresets/adapters/config/ConfigAdapter.h"

#include <ConfigService.h>
#include <InMemoryRegistry.h>
#include <ManualClock.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>

#include <memory>
#include <string>
#include <vector>

namespace config_model {

/// The product's service for scripts, on a factory without threads: the caller's thread is the services dispatcher's.
/// Only one object at a time.
class LoadedService final : public Service {
public:
    explicit LoadedService(const Pairs& shippedDefaults);
    ~LoadedService() override;

    void restart(const std::vector<std::wstring>& watchedKeys) override;
    void start() override;
    void stop() override;
    void refresh() override;
    void powerDown() override;
    void resetAllData() override;

    void addStore(const StoreShape& shape) override;
    void updateStore(const StoreShape& shape, const std::vector<std::wstring>& oldKeys) override;
    bool removeStore(const std::string& name) override;
    bool isStorePresent(const std::string& name) override { return adapter->isConfigStorePresent(name); }
    std::string findStore(const std::string& name) override;
    void removeAllCachedStores() override { service->removeAllCachedConfigStores(); }
    void setMdmConfig(const Pairs& pairs) override;

    bool getConfig(const std::wstring& key, std::wstring& value, std::wstring& store, bool& fromLegacyKey,
                   bool skipLocal) override {
        return adapter->getConfig(key, value, store, fromLegacyKey, skipLocal);
    }
    std::wstring getValueOfStore(const std::string& store, const std::wstring& key) override {
        return service->getValueFromConfigStore(store, key);
    }
    bool setConfig(const std::wstring& key, const std::wstring& value) override;
    bool setConfig(const Pairs& pairs) override;
    bool setInMemoryConfig(const std::wstring& key, const std::wstring& value) override {
        return adapter->setInMemoryConfig(key, value);
    }
    void resetConfig(const std::wstring& key) override;
    void resetStore(const std::string& name) override { adapter->resetConfigData(name); }
    bool provision(const std::wstring& url) override;
    bool resetProvisioning() override;
    void setKeySensitive(const std::wstring& key) override { service->setKeySensitive(key); }
    bool isKeySensitive(const std::wstring& key) override { return adapter->isKeySensitive(key); }
    bool isRecordSensitive(const std::wstring& key) override { return service->isKeySensitive(key); }
    bool isStarted() override;

    void setPolicy(const std::wstring& key, const std::wstring& value) override;
    void setFipsMode(bool on) override;

    RecordView getRecord(const std::wstring& key) override;
    std::vector<std::string> listCachedFiles() override;

private:
    void unload();
    void runTasks() { factory->backgroundDispatcher->runAll(); }

    const testing_host::TemporaryProfile profile;
    const testing_host::ManualClock clock; ///< Never advanced, so no backup is written.
    testing_host::InMemoryRegistry::Installed registry;
    std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<ZelUnified::ConfigAdapter> adapter;
    std::shared_ptr<ZelUnified::ConfigService> service;
    std::vector<std::shared_ptr<RecordObserver>> observers;
};

} // namespace config_model
