#pragma once

#include <ConfigStore.h>

#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class StoreTable;

/// An administrator's store, read once from an XML file by the constructor: a change of the file takes effect only in a
/// new store. If the file cannot be read, the store is empty. Any thread. One lock guards every operation, except that
/// a lookup may report a miss without it.
///
/// The store holds and lists "CertificateValidationEnabled" but never returns its value.
class LUMORA_CONFIG_API XmlConfigStore : public ConfigStore {
public:
    /// Reads the file if `readNow` is true, as a protected file if `encrypted` is true.
    XmlConfigStore(std::string storeName, int storePriority, bool isLocalStorage, bool encrypted, std::string file,
                   bool readNow);
    ~XmlConfigStore() override;

    bool getValue(const std::wstring& key, std::wstring& value) override;
    /// Inserts or overwrites the value although isReadOnly() returns true: that flag stops writes from the chain, not
    /// from the cache. Does not write to the file.
    bool storeValue(const std::wstring& key, const std::wstring& value) override;
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring& key) override;
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return name; }
    int getPriority() override { return priority; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return isLocalStore; }
    bool waitForStoreReady() override { return true; }

protected:
    const std::unique_ptr<StoreTable> table;
    std::string filePath;

private:
    friend class StoreTable; // finds `table`

    std::shared_ptr<void> reserved;
    bool isLocalStore;
    int priority;
    std::string name;
};

} // namespace ZelUnified
