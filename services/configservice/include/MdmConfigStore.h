#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>
#include <IndexedStore.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class ConfigTable;
class MdmConfigRetriever;

/// What a device-management system pushed. Each push makes a new store, which replaces the old one. Needs no lock:
/// nothing changes the table after construction.
class LUMORA_CONFIG_API MdmConfigStore : public ConfigStore, public IndexedStore {
public:
    /// UTF-8 XML of root, groups and keys. A text that can't be read gives an empty store.
    explicit MdmConfigStore(const std::string& configXml);
    /// A null retriever gives an empty store.
    explicit MdmConfigStore(std::shared_ptr<MdmConfigRetriever> retriever);
    /// As a null retriever.
    explicit MdmConfigStore(std::nullptr_t);
    ~MdmConfigStore() override;

    bool getValue(const std::wstring& key, std::wstring& value) override;
    bool storeValue(const std::wstring&, const std::wstring&) override { return false; }
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring&) override { return false; }
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override;
    int getPriority() override;
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return true; }
    bool waitForStoreReady() override { return true; }

    bool lookUp(const FoldedKey& key, std::wstring& value) override;
    const std::type_info& getIndexedType() const override { return typeid(MdmConfigStore); }
    KeyList listKeys() override;

private:
    const std::unique_ptr<ConfigTable> values;
};

} // namespace ZelUnified
