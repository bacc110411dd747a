#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace ZelUnified {

/// A store of another service whose return values can all be set.
class FakeConfigStore final : public ConfigStore {
public:
    FakeConfigStore(std::string storeName, int storePriority, ConfigMap table = {})
        : values(std::move(table)), name(std::move(storeName)), priority(storePriority) {}

    bool getValue(const std::wstring& key, std::wstring& value) override {
        if (beforeReading) {
            beforeReading();
        }
        const std::lock_guard lock(mutex);
        if (unanswered.contains(key)) {
            value.clear();
            return false;
        }
        const auto found = values.find(key);
        value = found == values.end() ? L"" : found->second;
        return found != values.end();
    }
    bool storeValue(const std::wstring& key, const std::wstring& value) override {
        const std::lock_guard lock(mutex);
        if (refusesWrites) {
            return false;
        }
        values.insert_or_assign(key, value);
        return true;
    }
    std::vector<std::wstring> getKeys() override {
        const std::lock_guard lock(mutex);
        std::vector<std::wstring> keys;
        for (const auto& [key, value] : values) {
            keys.push_back(key);
        }
        return keys;
    }
    bool removeValue(const std::wstring& key) override {
        const std::lock_guard lock(mutex);
        return values.erase(key) > 0;
    }
    void removeAllValues() override {
        const std::lock_guard lock(mutex);
        values.clear();
    }
    bool isReadOnly() override { return readOnly; }
    std::string getName() override { return name; }
    int getPriority() override { return priority; }
    void persistValues() override { ++timesPersisted; }
    void destroy() override {
        ++timesDestroyed;
        if (whenDestroyed) {
            whenDestroyed();
        }
    }
    bool isLocal() override { return local; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return caching; }

    bool readOnly = true;
    bool local = true;
    bool caching = false;
    bool refusesWrites = false;
    int timesPersisted = 0;
    int timesDestroyed = 0;
    ConfigMap values;
    ConfigKeySet unanswered;             ///< Listed among the keys if held, but never returned as a value.
    std::function<void()> beforeReading; ///< Called before each value is read.
    std::function<void()> whenDestroyed;

private:
    std::mutex mutex;
    const std::string name;
    const int priority;
};

inline std::shared_ptr<FakeConfigStore> makeReadOnlyStore(std::string name, int priority, ConfigMap values = {}) {
    return std::make_shared<FakeConfigStore>(std::move(name), priority, std::move(values));
}

inline std::shared_ptr<FakeConfigStore> makeWritableStore(std::string name, int priority, ConfigMap values = {}) {
    auto store = makeReadOnlyStore(std::move(name), priority, std::move(values));
    store->readOnly = false;
    return store;
}

} // namespace ZelUnified
