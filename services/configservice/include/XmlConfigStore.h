#pragma once

#include <ConfigStore.h>
#include <IndexedStore.h>
#include <secure/Mutex.h>

#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class ConfigTable;

/// An administrator's store over one XML file, read once at construction: a changed file reaches the system by a new
/// store only. A file that can't be read gives an empty store. Any thread; one lock around every
/// operation, but for the answer that a key is not held.
///
/// "CertificateValidationEnabled" is held and listed but never answered.
class LUMORA_CONFIG_API XmlConfigStore : public ConfigStore, public IndexedStore {
public:
    /// With `readNow` the file is read at once, as a protected one when `encrypted`.
    XmlConfigStore(std::string storeName, int storePriority, bool isLocalStorage, bool encrypted, std::string file,
                   bool readNow);
    ~XmlConfigStore() override;

    bool getValue(const std::wstring& key, std::wstring& value) override;
    /// Works although the store calls itself read-only: that flag keeps the chain from writing here, not the cache. The
    /// file is not touched.
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

    bool lookUp(const FoldedKey& key, std::wstring& value) override;
    const std::type_info& getIndexedType() const override { return typeid(XmlConfigStore); }
    KeyList listKeys() override;

protected:
    const std::unique_ptr<ConfigTable> values;
    std::string filePath;
    zel::Mutex valuesLock; ///< Guards `values`, but for ConfigTable::mayHold().

private:
    std::shared_ptr<void> reserved;
    bool isLocalStore;
    int priority;
    std::string name;
};

} // namespace ZelUnified
