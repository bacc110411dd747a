#pragma once

#include "FakeConfigStore.h"

#include <kyr/StringUtils.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace ZelUnified {

/// The exception that FailingConfigStore throws.
class StoreFailure final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A store of another service, one operation of which throws.
class FailingConfigStore final : public ConfigStore {
public:
    FailingConfigStore(std::string name, int priority, ConfigMap values)
        : store(std::move(name), priority, std::move(values)) {}

    bool getValue(const std::wstring& key, std::wstring& value) override {
        failAt("getValue");
        failAt("getValue " + KyrCoreUtils::toString(key));
        return store.getValue(key, value);
    }
    bool storeValue(const std::wstring& key, const std::wstring& value) override {
        failAt("storeValue");
        return store.storeValue(key, value);
    }
    std::vector<std::wstring> getKeys() override {
        failAt("getKeys");
        return store.getKeys();
    }
    bool removeValue(const std::wstring& key) override {
        failAt("removeValue");
        return store.removeValue(key);
    }
    void removeAllValues() override {
        failAt("removeAllValues");
        store.removeAllValues();
    }
    bool isReadOnly() override {
        failAt("isReadOnly");
        return store.isReadOnly();
    }
    std::string getName() override {
        failAt("getName");
        return store.getName();
    }
    int getPriority() override {
        failAt("getPriority");
        return store.getPriority();
    }
    void persistValues() override {
        failAt("persistValues");
        store.persistValues();
    }
    void destroy() override {
        failAt("destroy");
        store.destroy();
    }
    bool isLocal() override {
        failAt("isLocal");
        return store.isLocal();
    }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override {
        failAt("shouldCacheConfigStore");
        return store.shouldCacheConfigStore();
    }

    /// Implements the operations that do not throw.
    FakeConfigStore store;
    /// The name of the operation that throws, or empty. "getValue k" throws for the key k only. Stores may share it.
    std::shared_ptr<std::string> failing = std::make_shared<std::string>();

private:
    void failAt(std::string_view operation) const {
        if (*failing == operation) {
            throw StoreFailure(*failing);
        }
    }
};

} // namespace ZelUnified
