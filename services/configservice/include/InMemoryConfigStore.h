#pragma once

#include <ConfigStore.h>
#include <IndexedStore.h>
#include <secure/Mutex.h>

#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class ConfigTable;

/// The volatile store: a writable table that exists only in memory. Any thread.
class LUMORA_CONFIG_API InMemoryConfigStore final : public ConfigStore, public IndexedStore {
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

    bool lookUp(const FoldedKey& key, std::wstring& value) override;
    const std::type_info& getIndexedType() const override { return typeid(InMemoryConfigStore); }
    KeyList listKeys() override;

private:
    const std::unique_ptr<ConfigTable> values;
    zel::Mutex valuesMutex; ///< Guards `values`, except for ConfigTable::mayHold().
    const std::string name;
    const int priority;
};

} // namespace ZelUnified
