#pragma once

#include "Chain.h"

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace config_model {

/// A second implementation of the rules of the chain, as simple as possible: no lock, no index, no cache.
class ChainModel final : public Chain {
public:
    ChainModel() = default;
    /// Copies the state, including the stores, but not the callbacks.
    ChainModel(const ChainModel& other);
    ChainModel& operator=(const ChainModel&) = delete;
    ~ChainModel() override = default;

    void addStore(const StoreShape& shape) override { addStore(std::make_shared<ModelStore>(shape)); }
    void updateExistingStore(const StoreShape& shape, const std::vector<std::wstring>& oldKeys) override {
        updateExistingStore(std::make_shared<ModelStore>(shape), oldKeys);
    }
    bool removeStore(const std::string& name) override;
    void removeNonLocalStores() override;
    void destroyStores() override;
    bool hasStore(const std::string& name) override;
    std::string findStore(const std::string& name) override;

    void registerStoreObserver(std::size_t number) override;
    void unregisterStoreObserver(std::size_t number) override;
    void renewStoreObserver(std::size_t number) override;

    Reading getValue(const std::wstring& key, bool skipLocal, const std::string& filter) override;
    std::wstring getValueOfStore(const std::string& filter, const std::wstring& key) override;
    OriginalReading getOriginalValue(const std::wstring& key) override;
    void setKeySensitive(const std::wstring& key) override;
    bool isKeySensitive(const std::wstring& key) override;

    bool storeValue(const std::wstring& key, const std::wstring& value) override;
    bool storeValues(const Pairs& values) override;
    bool setInMemoryValue(const std::wstring& key, const std::wstring& value) override;
    bool removeValue(const std::wstring& key) override;
    bool setUrlProvisioningData(const std::wstring& url) override;

    void resetConfigData() override;
    void resetConfigData(const std::string& name) override;
    void removeAllCachedStores() override;
    bool removeCachedFiles(const std::string& fileName) override;

    void setFipsMode(bool on) override { state.fips = on; }
    void placeCachedFile(const std::string& fileName) override { state.cachedFiles.insert(fileName); }
    std::vector<std::string> listCachedFiles() override { return {state.cachedFiles.begin(), state.cachedFiles.end()}; }

    std::vector<std::string> getTaskNames() override;
    void runTasks() override;
    std::vector<std::string> takeLog() override { return std::exchange(state.log, {}); }

    using Store = std::shared_ptr<ModelStore>;
    /// For the model of the service.
    void addStore(const Store& store);
    void updateExistingStore(const Store& store, const std::vector<std::wstring>& oldKeys);
    Store getStoreByName(const std::string& name);
    /// Called when a store is persisted, to write the store's file.
    std::function<void(ModelStore&)> persisted;

    /// A background task. It persists `store`, or tells an observer the name of a store that arrived.
    struct Task {
        std::string name;
        Store store;
        std::size_t observer = 0;
        std::string arrived;
    };
    /// For a caller that runs the tasks itself.
    const std::deque<Task>& getTasks() const { return state.tasks; }
    void removeFirstTask() { state.tasks.pop_front(); }
    const std::vector<Store>& getStores() const { return state.chain; }
    const std::vector<std::size_t>& getStoreObservers() const { return state.storeObservers; }
    const std::vector<std::wstring>& getSensitiveKeys() const { return state.sensitiveKeys; }
    const std::set<std::string>& getCachedFiles() const { return state.cachedFiles; }

private:
    /// A copy shares the stores until the constructor duplicates them.
    struct State {
        std::vector<Store> chain;
        std::vector<std::wstring> sensitiveKeys;
        /// Serial numbers: a destroyed observer keeps its place in the list.
        std::vector<std::size_t> storeObservers;
        std::array<std::size_t, 4> serials = {0, 1, 2, 3};
        std::size_t nextSerial = 4;
        std::deque<Task> tasks;
        std::vector<std::string> log;
        std::set<std::string> cachedFiles;
        bool fips = false;
    };

    Reading lookupInStores(const std::wstring& key, bool skipLocal, const std::string& filter);
    bool findOriginalValue(const std::wstring& key, OriginalReading& reading, bool& found);
    void fireConfigChange(const std::wstring& key, bool deferFire);
    void refreshKeys(const std::vector<std::wstring>& keys);
    void fireStoreAdded(const std::string& name);
    void removeStoreAndCachedCopy(const std::string& name);
    void persistLater(const Store& store);
    void run(const Task& task);
    bool removeCachedFile(const std::string& fileName);
    void logUnlessOverrideStore(const std::string& name, const std::string& line);
    static bool isWriteTarget(const ModelStore& store);

    State state;
};

} // namespace config_model
