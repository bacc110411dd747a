#pragma once

#include <ConfigStore.h>

#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class StoreTable;

/// A read-only store filled from an installer's file: lines of `key:value` in UTF-8; "#" starts a comment. The first
/// colon is the separator, so a value may contain colons. A later line overrides an earlier one. The constructor reads
/// the file, once. Any thread.
class LUMORA_CONFIG_API BootstrapConfigStore final : public ConfigStore {
public:
    /// Reads the file. If it cannot be opened, logs a warning, and the store is empty.
    BootstrapConfigStore(const std::string& storeName, const std::string& path, int storePriority);
    ~BootstrapConfigStore() override;

    bool getValue(const std::wstring& key, std::wstring& value) override;
    bool storeValue(const std::wstring&, const std::wstring&) override { return false; }
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring&) override { return false; }
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return name; }
    int getPriority() override { return priority; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return true; }
    bool waitForStoreReady() override { return true; }

private:
    friend class StoreTable; // finds `table`

    const int priority;
    const std::unique_ptr<StoreTable> table;
    const std::string filePath;
    const std::string name;
};

} // namespace ZelUnified
