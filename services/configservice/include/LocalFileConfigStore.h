#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>
#include <IndexedStore.h>
#include <secure/Mutex.h>

#include <memory>
#include <string>
#include <vector>

namespace zel {
class SecureString;
}

namespace ZelUnified {

class ConfigFileCacheTimer;
class ConfigTable;
class PersistedCopy;

/// Keeps its keys in a file: the user's settings in a protected file with a backup beside it, or the plain read-only
/// defaults of the installation. A file that can't be read gives an empty store.
///
/// The file is read once, at construction. persistValues() writes the main file at once, on its caller's thread, and,
/// in the store named "LocalFileConfigStore" that was given a timer, the backup a while later. A readable file is never
/// overwritten while the other one is unreadable. Hold it by shared pointer: the delayed write keeps a weak one.
///
/// Locks: `fileMutex` before `valuesMutex`; readers of keys don't wait for a write to the disk.
class LUMORA_CONFIG_API LocalFileConfigStore : public ConfigStore,
                                               public IndexedStore,
                                               public std::enable_shared_from_this<LocalFileConfigStore> {
public:
    /// Any file. `directory` without its last separator; the empty one stays empty. `file` must have an extension:
    /// without one this throws std::out_of_range.
    LocalFileConfigStore(std::string storeName, int storePriority, std::string directory, std::string file,
                         bool isLocalStore, bool isReadOnlyStore, bool encrypted);
    /// The user's protected file in the configuration directory.
    LocalFileConfigStore(std::string storeName, int storePriority, bool isLocalStore);
    ~LocalFileConfigStore() override;

    bool getValue(const std::wstring& key, std::wstring& value) override;
    bool storeValue(const std::wstring& key, const std::wstring& value) override;
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring& key) override;
    /// Empties the table, not the file. Waits for a write in flight.
    void removeAllValues() override;
    bool isReadOnly() override { return readOnly; }
    std::string getName() override { return name; }
    int getPriority() override { return priority; }
    /// Writes nothing when the table is what was last handed to the facility, whose failure is silent: the next change
    /// writes.
    void persistValues() override;
    /// From here on no document is written.
    void destroy() override;
    bool isLocal() override { return local; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return false; }

    bool lookUp(const FoldedKey& key, std::wstring& value) override;
    const std::type_info& getIndexedType() const override { return typeid(LocalFileConfigStore); }
    KeyList listKeys() override;

    /// Before the store is shared. Without a timer there are no backup writes.
    void setTimer(std::shared_ptr<ConfigFileCacheTimer> cacheTimer);
    /// The delay of the backup write in milliseconds. Before the store is shared.
    void setInterval(int milliseconds);

    /// Whether the counterpart of `target`, or with `checkTarget` the target itself, is absent or readable.
    bool checkIfGoodToWrite(const std::string& target, bool checkTarget);

private:
    class LocalFileConfigFileCacheTimerCallBackImpl;

    bool readFromFile();
    bool readFromEncryptedFile();
    bool readProtectedText(zel::SecureString& content);
    /// Whether the store keeps a second file: only the user's own store does.
    bool hasBackup() const;
    void take(ConfigMap read);
    void createConfigDirectory();
    void persistValuesImpl(const std::string& target);
    void getDataString(zel::SecureString& content);
    void backupConfigFile();

    std::string name;
    int priority;
    bool local;
    bool readOnly;
    bool destroyed = false;
    zel::Mutex valuesMutex; ///< Guards `destroyed`, `lastPersistedValues`, and `values` but for ConfigTable::mayHold().
    zel::Mutex fileMutex;   ///< Held while the files are read or written.
    const std::unique_ptr<ConfigTable> values;
    const std::unique_ptr<PersistedCopy> lastPersistedValues; ///< Told of each change of `values`.
    std::string configDirectory;
    std::string fileName;
    std::string backupFileName;
    std::shared_ptr<ConfigFileCacheTimer> timer;
    int interval = 30000;
};

} // namespace ZelUnified
