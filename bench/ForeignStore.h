#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// A read-only store of another service, which the library can only call through ConfigStore. Not for several threads.
class ForeignStore final : public ZelUnified::ConfigStore {
public:
    ForeignStore(std::string storeName, int storePriority, ZelUnified::ConfigMap table)
        : values(std::move(table)), name(std::move(storeName)), priority(storePriority) {}

    bool getValue(const std::wstring& key, std::wstring& value) override {
        const auto found = values.find(key);
        if (found == values.end()) {
            value.clear();
            return false;
        }
        value = found->second;
        return true;
    }
    bool storeValue(const std::wstring& /*key*/, const std::wstring& /*value*/) override { return false; }
    std::vector<std::wstring> getKeys() override {
        std::vector<std::wstring> keys;
        for (const auto& [key, value] : values) {
            keys.push_back(key);
        }
        return keys;
    }
    bool removeValue(const std::wstring& /*key*/) override { return false; }
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return name; }
    int getPriority() override { return priority; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return false; }
    bool waitForStoreReady() override { return true; }

private:
    const ZelUnified::ConfigMap values;
    const std::string name;
    const int priority;
};

} // namespace bench
