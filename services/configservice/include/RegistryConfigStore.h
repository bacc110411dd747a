#pragma once

#include <registry/Registry.h>

#include <ConfigMap.h>
#include <ConfigServiceExport.h>
#include <ConfigStore.h>
#include <IndexedStore.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class ConfigTable;
class UnifiedFactory;

/// The policy that administrators leave in the registry of the current user: one key with all keys below it, flattened
/// into one table. Read-only, and read once, in the constructor; a refresh makes a new store.
///
/// The table never changes once constructed, so every operation may be called from any thread.
class LUMORA_CONFIG_API RegistryConfigStore : public ConfigStore, public IndexedStore {
public:
    /// Reads "Software\" + `subkey` (UTF-8) under the current user's root, marks passwords as sensitive keys of the
    /// factory's feature set if there is one, logs the table, and leaves a text copy of it in the configuration
    /// directory, which replaces that of any earlier store. A missing key gives an empty store.
    RegistryConfigStore(std::shared_ptr<UnifiedFactory> factory, std::string storeName, int storePriority,
                        std::string subkey);
    ~RegistryConfigStore() override;

    /// Never answers for "CertificateValidationEnabled".
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
    /// A place for stores that follow a registry which changes. This one does not.
    virtual void onRegistryChanged() {}

    bool lookUp(const FoldedKey& key, std::wstring& value) override;
    const std::type_info& getIndexedType() const override { return typeid(RegistryConfigStore); }
    KeyList listKeys() override;

    /// Deletes the policy key of the current user with all that lies below it, as far as that may be done.
    static void removeRegistrySettings();

    /// The room for a path, its terminator included.
    static constexpr std::size_t pathBufferSize = 520;
    using PathBuffer = wchar_t[pathBufferSize];

    /// Deletes the key with all that lies below it. True when it is gone, or never was. `subkey` is the buffer in which
    /// the paths of the keys below are formed; afterwards it holds the path it came with.
    static bool regDelnodeRecurse(zel::registry::HKEY root, PathBuffer& subkey);

private:
    static void deleteSubkeys(zel::registry::Registry& registry, zel::registry::HKEY root, zel::registry::HKEY key,
                              PathBuffer& subkey);
    void markSensitiveKeys() const;
    void logConfigMap() const;
    void writeTextCopy() const;

    const std::unique_ptr<ConfigTable> values;
    int priority;
    std::string name;
    std::shared_ptr<UnifiedFactory> unifiedFactory;
    std::shared_ptr<void> reserved;
};

} // namespace ZelUnified
