#pragma once

#include <registry/Registry.h>

#include <ConfigMap.h>
#include <ConfigServiceExport.h>
#include <ConfigStore.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class StoreTable;
class UnifiedFactory;

/// Contains the policy that administrators set in the registry of the current user: one key with all its subkeys,
/// flattened into one table. Read-only. The constructor reads the registry, once; a refresh creates a new store.
///
/// The table is constant after construction, so any thread may call every operation.
class LUMORA_CONFIG_API RegistryConfigStore : public ConfigStore {
public:
    /// Reads "Software\" + `subkey` (UTF-8) under the current user's root. Marks passwords as sensitive keys of the
    /// factory's feature set, if there is one. Logs the table and writes it as a text file into the configuration
    /// directory, where it replaces the file of any earlier store. If the registry key is missing, the store is empty.
    RegistryConfigStore(std::shared_ptr<UnifiedFactory> factory, std::string storeName, int storePriority,
                        std::string subkey);
    ~RegistryConfigStore() override;

    /// Never returns a value for "CertificateValidationEnabled".
    bool getValue(const std::wstring& key, std::wstring& value) override;
    bool storeValue(const std::wstring& key, const std::wstring& value) override;
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring& key) override;
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return name; }
    int getPriority() override { return priority; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return false; }
    bool waitForStoreReady() override { return true; }
    /// Does nothing. A derived store that monitors the registry can override it.
    virtual void onRegistryChanged() {}

    /// Deletes the current user's policy key with all its subkeys. Keys that cannot be deleted remain.
    static void removeRegistrySettings();

    /// The size of a path buffer in characters, including the terminator.
    static constexpr std::size_t pathBufferSize = 520;
    using PathBuffer = wchar_t[pathBufferSize];

    /// Deletes the key with all its subkeys. Returns true if the key is gone or never existed. `subkey` is also the
    /// buffer in which the paths of the subkeys are built; on return it contains the original path.
    static bool regDelnodeRecurse(zel::registry::HKEY root, PathBuffer& subkey);

private:
    friend class StoreTable; // finds `table`

    static void deleteSubkeys(zel::registry::Registry& registry, zel::registry::HKEY root, zel::registry::HKEY key,
                              PathBuffer& subkey);
    void markSensitiveKeys() const;
    void logConfigMap() const;
    void writeTextCopy() const;

    const std::unique_ptr<StoreTable> table;
    int priority;
    std::string name;
    std::shared_ptr<UnifiedFactory> unifiedFactory;
    std::shared_ptr<void> reserved;
};

} // namespace ZelUnified
