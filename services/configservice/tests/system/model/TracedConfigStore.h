#pragma once

#include "ModelStore.h"

#include <ConfigMap.h>
#include <ConfigStore.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace config_model {

/// A store of another service with the given shape. Reports when it is persisted or destroyed.
class TracedConfigStore final : public ZelUnified::ConfigStore {
public:
    TracedConfigStore(StoreShape form, std::function<void(const std::string&)> listener)
        : shape(std::move(form)), told(std::move(listener)) {
        for (const auto& [key, value] : shape.pairs) {
            values[key] = value;
        }
    }

    bool getValue(const std::wstring& key, std::wstring& value) override {
        const std::lock_guard lock(mutex);
        const auto found = values.find(key);
        value = found == values.end() ? L"" : found->second;
        return found != values.end();
    }
    bool storeValue(const std::wstring& key, const std::wstring& value) override {
        const std::lock_guard lock(mutex);
        if (!shape.refusesWrites) {
            values[key] = value;
        }
        return !shape.refusesWrites;
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
    bool isReadOnly() override { return shape.readOnly; }
    std::string getName() override { return shape.name; }
    int getPriority() override { return shape.priority; }
    void persistValues() override { told("persist " + shape.name); }
    void destroy() override { told("destroy " + shape.name); }
    bool isLocal() override { return shape.local; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return shape.caching; }

private:
    const StoreShape shape;
    const std::function<void(const std::string&)> told;
    std::mutex mutex;
    ZelUnified::ConfigMap values;
};

} // namespace config_model
