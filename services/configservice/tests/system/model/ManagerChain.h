#pragma once

#include "Chain.h"
#include "featuresets/adapters/config/chain/ConfigStoreManager.h"

#include <ConfigStoreManager_Observer.h>
#include <LogRecorder.h>
#include <RecordingFactory.h>

#include <array>
#include <filesystem>
#include <memory>

namespace config_model {

/// The product's manager for scripts, on a factory without threads. Only one object at a time, while a TemporaryProfile
/// exists.
class ManagerChain final : public Chain, private ZelUnified::ConfigStoreManager_Observer {
public:
    ManagerChain();
    ~ManagerChain() override;

    void addStore(const StoreShape& shape) override { manager.addStore(makeStore(shape)); }
    void updateExistingStore(const StoreShape& shape, const std::vector<std::wstring>& oldKeys) override {
        manager.updateExistingConfigStore(makeStore(shape), oldKeys);
    }
    bool removeStore(const std::string& name) override { return manager.removeStoreWithSameName(name); }
    void removeNonLocalStores() override { manager.removeNonLocalStores(); }
    void destroyStores() override { manager.destroyStores(); }
    bool hasStore(const std::string& name) override { return manager.hasStoreWithName(name); }
    std::string findStore(const std::string& name) override;

    void registerStoreObserver(std::size_t number) override;
    void unregisterStoreObserver(std::size_t number) override;
    void renewStoreObserver(std::size_t number) override;

    Reading getValue(const std::wstring& key, bool skipLocal, const std::string& filter) override;
    std::wstring getValueOfStore(const std::string& filter, const std::wstring& key) override {
        return manager.getValue(filter, key);
    }
    OriginalReading getOriginalValue(const std::wstring& key) override;
    void setKeySensitive(const std::wstring& key) override { manager.setKeySensitive(key); }
    bool isKeySensitive(const std::wstring& key) override { return manager.isSensitiveKey(key); }

    bool storeValue(const std::wstring& key, const std::wstring& value) override {
        return manager.storeValue(key, value);
    }
    bool storeValues(const Pairs& values) override;
    bool setInMemoryValue(const std::wstring& key, const std::wstring& value) override {
        return manager.setInMemoryValue(key, value);
    }
    bool removeValue(const std::wstring& key) override { return manager.removeValue(key); }
    bool setUrlProvisioningData(const std::wstring& url) override { return manager.setUrlProvisioningData(url); }

    void resetConfigData() override { manager.resetConfigData(); }
    void resetConfigData(const std::string& name) override { manager.resetConfigData(name); }
    void removeAllCachedStores() override { manager.removeAllCachedStores(); }
    bool removeCachedFiles(const std::string& fileName) override { return manager.removeCachedFiles(fileName); }

    void setFipsMode(bool on) override;
    void placeCachedFile(const std::string& fileName) override;
    std::vector<std::string> listCachedFiles() override;

    std::vector<std::string> getTaskNames() override { return factory->backgroundDispatcher->getTaskNames(); }
    void runTasks() override { factory->backgroundDispatcher->runAll(); }
    std::vector<std::string> takeLog() override;

private:
    class StoreObserver;

    std::shared_ptr<ZelUnified::ConfigStore> makeStore(const StoreShape& shape);
    void onFireIfRequired(std::wstring key) override { mayFire(key); }
    void onSensitiveKeyAddedOrUpdated(std::wstring key) override { madeSensitive(key); }
    void onConfigAddedOrUpdated(std::wstring key, std::wstring value, std::wstring originalValue, bool isOverridden,
                                bool isDefined, std::wstring valueStoreName, std::wstring originalValueStoreName,
                                bool deferFire) override;

    const std::filesystem::path cacheFolder;
    testing_host::LogRecorder log;
    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    ZelUnified::ConfigStoreManager manager{factory};
    std::array<std::shared_ptr<StoreObserver>, 4> storeObservers;
};

} // namespace config_model
