#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class StoreTable;
class MdmConfigRetriever;

/// Contains the settings from a device-management system. Each push creates a new store, which replaces the old one.
/// The table is constant after construction, so any thread may call every operation.
class LUMORA_CONFIG_API MdmConfigStore : public ConfigStore {
public:
    /// Reads a UTF-8 XML document of a root, groups and keys. If it cannot be parsed, the store is empty.
    explicit MdmConfigStore(const std::string& configXml);
    /// Reads the settings from `retriever`. If it is null, the store is empty.
    explicit MdmConfigStore(std::shared_ptr<MdmConfigRetriever> retriever);
    /// Creates an empty store, like a null retriever.
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

private:
    friend class StoreTable; // finds `table`

    const std::unique_ptr<StoreTable> table;
};

} // namespace ZelUnified
