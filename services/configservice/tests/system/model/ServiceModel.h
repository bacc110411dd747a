#pragma once

#include "ChainModel.h"
#include "Service.h"
#include "ServiceRecords.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace config_model {

/// A second implementation of the rules of the service: which stores exist and when, what persists between runs, the
/// started guard, the policy switches, the derived flags.
class ServiceModel final : public Service {
public:
    explicit ServiceModel(Pairs shippedDefaults) : defaults(std::move(shippedDefaults)) {}

    void restart(const std::vector<std::wstring>& watchedKeys) override;
    void start() override;
    void stop() override;
    void refresh() override;
    void powerDown() override;
    void resetAllData() override;

    void addStore(const StoreShape& shape) override;
    void updateStore(const StoreShape& shape, const std::vector<std::wstring>& oldKeys) override;
    bool removeStore(const std::string& name) override;
    bool isStorePresent(const std::string& name) override { return started && chain->hasStore(name); }
    std::string findStore(const std::string& name) override { return chain->findStore(name); }
    void removeAllCachedStores() override { chain->removeAllCachedStores(); }
    void setMdmConfig(const Pairs& pairs) override;

    bool getConfig(const std::wstring& key, std::wstring& value, std::wstring& store, bool& fromLegacyKey,
                   bool skipLocal) override;
    std::wstring getValueOfStore(const std::string& store, const std::wstring& key) override {
        return chain->getValueOfStore(store, key);
    }
    bool setConfig(const std::wstring& key, const std::wstring& value) override;
    bool setConfig(const Pairs& pairs) override;
    bool setInMemoryConfig(const std::wstring& key, const std::wstring& value) override {
        return chain->setInMemoryValue(key, value);
    }
    void resetConfig(const std::wstring& key) override;
    void resetStore(const std::string& name) override { chain->resetConfigData(name); }
    bool provision(const std::wstring& url) override;
    bool resetProvisioning() override;
    void setKeySensitive(const std::wstring& key) override { chain->setKeySensitive(key); }
    bool isKeySensitive(const std::wstring& key) override { return chain->isKeySensitive(key); }
    bool isRecordSensitive(const std::wstring& key) override;
    bool isStarted() override { return started; }

    void setPolicy(const std::wstring& key, const std::wstring& value) override;
    void setFipsMode(bool on) override;

    RecordView getRecord(const std::wstring& key) override { return records.get(key, fips); }
    std::vector<std::string> listCachedFiles() override { return chain->listCachedFiles(); }

    // What a host and the world around it do. Not operations of Service: a script cannot call them.

    /// The files of the profile, by name. A damaged file exists but cannot be read.
    struct Files {
        enum class Damage { MovedAsideAtStart, StaysInPlace };

        std::map<std::string, Pairs> user; ///< The user's file and its backup.
        std::map<std::string, Pairs> copies;
        std::map<std::string, Damage> damaged;
    };
    Files getFiles() const;
    /// Replaces the files, because what was written to them is lost or because they were damaged or removed.
    void setFiles(const Files& files);
    /// Lets the delay of a backup pass.
    void passTime();
    /// Sets the defaults that the next run reads.
    void setDefaults(Pairs shippedDefaults) { defaults = std::move(shippedDefaults); }
    /// Sets the values of the platform's policy that a reset cannot remove. setPolicy() overrides them.
    void setAdministratorPolicy(Pairs pairs) { administratorPolicy = std::move(pairs); }

private:
    void connect();
    void moveDamagedFilesAside();
    void addMemoryStore();
    enum class Backup { Scheduled, Never };
    void addUserStore(Backup kind);
    Pairs readUserFile() const;
    void persist(ModelStore& store);
    void writeUserFile(ModelStore& store, const std::string& target, const std::string& counterpart);
    void addRegistryStore();
    void addCopy(const std::string& name, int priority);
    void initialiseCachedStores();
    void cacheStore(const ModelStore& store);
    void writeRecord(const std::string& name, int priority);
    void removeFromRecord(const std::string& name);
    bool isSdkMode();
    bool isSwitchedOff(const std::wstring& key);
    void removeValuesIfPolicySet();
    void deriveFlags();
    void deriveFlag(const std::wstring& key, bool flag);
    bool hasCachedServerData();
    std::wstring valueOf(const std::wstring& key) { return chain->getValue(key, false, "").value; }
    /// Returns the pairs as they are read from a document: keys in lower case, and changed as FIPS mode requires.
    Pairs readBack(const Pairs& pairs) const;

    // State that survives a run. During a run, the chain lists which copies exist.
    Pairs defaults;
    Pairs policy;
    Pairs administratorPolicy;
    Files files;
    bool fips = false;
    // State of the current run.
    std::unique_ptr<ChainModel> chain;
    ServiceRecords records;
    std::vector<std::wstring> sensitiveRecords;
    std::weak_ptr<ModelStore> storeWithBackup; ///< The last user's store that was given the timer.
    std::weak_ptr<ModelStore> storeToBackUp;
    bool isBackupDue = false; ///< Also after the store is gone.
    bool started = false;
};

} // namespace config_model
