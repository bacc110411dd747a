#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>
#include <secure/Mutex.h>

#include <memory>
#include <string>
#include <vector>

namespace zel {
class SecureString;
}

namespace ZelUnified {

class ConfigFileCacheTimer;
class StoreTable;

/// Keeps its keys in a file: either the user's settings, in a protected file with a backup beside it, or the read-only
/// defaults of the installation, in a plain file. If the file cannot be read, the store is empty.
///
/// The constructor reads the file, once. persistValues() writes the main file immediately, on its caller's thread. The
/// store named "LocalFileConfigStore" also writes the backup after a delay, if it has a timer. A readable file is never
/// overwritten while the other file is unreadable. Own the store by shared pointer: the delayed write holds a weak one.
///
/// Lock order: `fileMutex` before the lock of `table`. Reading a key does not wait for a write to the disk.
class LUMORA_CONFIG_API LocalFileConfigStore : public ConfigStore,
                                               public std::enable_shared_from_this<LocalFileConfigStore> {
public:
    /// Opens any file. `directory` has no trailing separator and may be empty. `file` must have an extension; otherwise
    /// this throws std::out_of_range.
    LocalFileConfigStore(std::string storeName, int storePriority, std::string directory, std::string file,
                         bool isLocalStore, bool isReadOnlyStore, bool encrypted);
    /// Opens the user's protected file in the configuration directory.
    LocalFileConfigStore(std::string storeName, int storePriority, bool isLocalStore);
    ~LocalFileConfigStore() override;

    bool getValue(const std::wstring& key, std::wstring& value) override;
    bool storeValue(const std::wstring& key, const std::wstring& value) override;
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring& key) override;
    /// Clears the table but not the file. A write in progress may still end with the old values.
    void removeAllValues() override;
    bool isReadOnly() override { return readOnly; }
    std::string getName() override { return name; }
    int getPriority() override { return priority; }
    /// Writes nothing if the table equals the one last passed to the encryption facility. The facility does not report
    /// a failed write, so the store writes again only after the next change.
    void persistValues() override;
    /// Waits for a write in progress. A later write has the values of that moment.
    void waitForWrite();
    /// Disables writing: from now on the store writes no file.
    void destroy() override;
    bool isLocal() override { return local; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return false; }

    /// Sets the timer of the backup writes. Without a timer the store writes no backup. Call before the store is
    /// shared.
    void setTimer(std::shared_ptr<ConfigFileCacheTimer> cacheTimer);
    /// Sets the delay of the backup write in milliseconds. Call before the store is shared.
    void setInterval(int milliseconds);

    /// Returns true if the other file of the pair is absent or readable; with `checkTarget`, if `target` itself is.
    bool checkIfGoodToWrite(const std::string& target, bool checkTarget);

private:
    friend class StoreTable; // finds `table`

    class LocalFileConfigFileCacheTimerCallBackImpl;

    bool readFromFile();
    bool readFromEncryptedFile();
    bool readProtectedText(zel::SecureString& content);
    /// Returns true if the store keeps a backup file: only the user's own store does.
    bool hasBackup() const;
    void createConfigDirectory();
    void persistValuesImpl(const std::string& target);
    void getDataString(zel::SecureString& content);
    void backupConfigFile();

    std::string name;
    int priority;
    bool local;
    bool readOnly;
    /// Guarded by the lock of `table`, like `lastPersistedValues`. Not annotated: StoreTable is incomplete here.
    bool destroyed = false;
    zel::Mutex fileMutex; ///< Held while files are read or written.
    const std::unique_ptr<StoreTable> table;
    ConfigMap lastPersistedValues;
    std::string configDirectory;
    std::string fileName;
    std::string backupFileName;
    std::shared_ptr<ConfigFileCacheTimer> timer;
    int interval = 30000;
};

} // namespace ZelUnified
