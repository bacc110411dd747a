#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>
#include <secure/Mutex.h>

namespace ZelUnified {

/// The volatile store: a writable table that dies with the process. Any thread.
class LUMORA_CONFIG_API InMemoryConfigStore final : public ConfigStore {
public:
    InMemoryConfigStore(std::string storeName, int storePriority);

    bool getValue(const std::wstring& key, std::wstring& value) override;
    bool storeValue(const std::wstring& key, const std::wstring& value) override;
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring& key) override;
    void removeAllValues() override;
    bool isReadOnly() override { return false; }
    std::string getName() override { return name; }
    int getPriority() override { return priority; }
    void persistValues() override;
    void destroy() override {}
    bool isLocal() override { return true; }
    bool waitForStoreReady() override { return true; }

private:
    ConfigMap values;
    zel::Mutex valuesMutex; ///< Guards `values`.
    const std::string name;
    const int priority;
};

} // namespace ZelUnified
