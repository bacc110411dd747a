#pragma once

#include <ConfigStore.h>

#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class StoreTable;

/// The volatile store: a writable table that exists only in memory. Any thread.
class LUMORA_CONFIG_API InMemoryConfigStore final : public ConfigStore {
public:
    InMemoryConfigStore(std::string storeName, int storePriority);
    ~InMemoryConfigStore() override;

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
    friend class StoreTable; // finds `table`

    const std::unique_ptr<StoreTable> table;
    const std::string name;
    const int priority;
};

} // namespace ZelUnified
