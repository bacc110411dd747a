#pragma once

#include "ModelStore.h"

#include <ConfigMap.h>
#include <ConfigStore.h>

#include <string>
#include <thread>
#include <vector>

namespace config_model {

/// A read-only store of another service, with the given shape. Yields while it is read, so that other threads run while
/// the reader holds its locks.
class DeliveredStore final : public ZelUnified::ConfigStore {
public:
    explicit DeliveredStore(StoreShape form) : shape(std::move(form)) {
        for (const auto& [key, value] : shape.pairs) {
            values[key] = value;
        }
    }

    bool getValue(const std::wstring& key, std::wstring& value) override {
        std::this_thread::yield();
        const auto found = values.find(key);
        value = found == values.end() ? L"" : found->second;
        return found != values.end();
    }
    std::vector<std::wstring> getKeys() override {
        std::vector<std::wstring> keys;
        for (const auto& [key, value] : values) {
            keys.push_back(key);
        }
        return keys;
    }
    bool storeValue(const std::wstring&, const std::wstring&) override { return false; }
    bool removeValue(const std::wstring&) override { return false; }
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return shape.name; }
    int getPriority() override { return shape.priority; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return shape.local; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return shape.caching; }

private:
    const StoreShape shape;
    ZelUnified::ConfigMap values;
};

} // namespace config_model
