#pragma once

#include "RecordObserver.h"
#include "Service.h"
#include "UnsyncedFiles.h"

#include <unified/ProfileLock.h>
#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <FaultInjectingFileLayer.h>
#include <LogRecorder.h>
#include <ManualClock.h>
#include <TemporaryProfile.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace simulated_year {

/// The files of a folder and the folders below it: relative path to content.
using FolderContent = std::map<std::string, std::string>;

FolderContent readFolder(const std::filesystem::path& folder);

/// The real host with the real plug-in on a temporary profile, for scripts. The clock of the timers is manual. Each
/// restart is a new host; between runs there is none. Only one object at a time.
class HostedService final : public config_model::Service {
public:
    explicit HostedService(const config_model::Pairs& shippedDefaults);
    ~HostedService() override;
    HostedService(const HostedService&) = delete;
    HostedService& operator=(const HostedService&) = delete;

    void restart(const std::vector<std::wstring>& watchedKeys) override;
    void start() override;
    void stop() override;
    void refresh() override;
    void powerDown() override;
    /// Uses the next reset option each time.
    void resetAllData() override;

    void addStore(const config_model::StoreShape& shape) override;
    void updateStore(const config_model::StoreShape& shape, const std::vector<std::wstring>& oldKeys) override;
    bool removeStore(const std::string& name) override;
    bool isStorePresent(const std::string& name) override;
    std::string findStore(const std::string& name) override;
    void removeAllCachedStores() override;
    void setMdmConfig(const config_model::Pairs& pairs) override;

    bool getConfig(const std::wstring& key, std::wstring& value, std::wstring& store, bool& fromLegacyKey,
                   bool skipLocal) override;
    std::wstring getValueOfStore(const std::string& store, const std::wstring& key) override;
    bool setConfig(const std::wstring& key, const std::wstring& value) override;
    bool setConfig(const config_model::Pairs& pairs) override;
    bool setInMemoryConfig(const std::wstring& key, const std::wstring& value) override;
    void resetConfig(const std::wstring& key) override;
    void resetStore(const std::string& name) override;
    bool provision(const std::wstring& url) override;
    bool resetProvisioning() override;
    void setKeySensitive(const std::wstring& key) override;
    bool isKeySensitive(const std::wstring& key) override;
    bool isRecordSensitive(const std::wstring& key) override;
    bool isStarted() override;

    void setPolicy(const std::wstring& key, const std::wstring& value) override;
    void setFipsMode(bool on) override;

    config_model::RecordView getRecord(const std::wstring& key) override;
    /// Includes copies that are not on the disk yet, without the files that were moved aside.
    std::vector<std::string> listCachedFiles() override;

    // For the simulation.

    /// Ends the run, if there is one.
    void shutDown();
    /// Chooses the thread on which the next host runs its services.
    void setServicesThread(ZelUnified::UnifiedFactoryOptions::ServicesThread thread) { servicesThread = thread; }
    /// Makes the disk of the next run one that fillDisk() can fill. Call it while no host runs.
    void setDiskThatFillsUp(bool fillsUp);
    void fillDisk(std::size_t freeBytes);
    void emptyDisk();
    void passTime(std::int64_t seconds);
    void setDefaults(const config_model::Pairs& pairs);
    void setAdministratorPolicy(const config_model::Pairs& pairs);
    /// Returns a line for each record that differs from the lookup of its key, except keys with an old or a new name.
    std::vector<std::string> findRecordsThatDiffer();

    const testing_host::TemporaryProfile& getProfile() const { return profile; }
    testing_host::LogRecorder& getLog() { return log; }
    std::size_t countPendingTimers() const { return clock.getPendingCount(); }
    /// Returns the configuration directory as it was before and after the last host was initialised.
    const FolderContent& getFilesBeforeStart() const { return filesBeforeStart; }
    const FolderContent& getFilesAfterStart() const { return filesAfterStart; }

private:
    void onServices(const std::function<void()>& work) const;
    /// Runs all tasks that are queued.
    void settle() const;
    void writePolicyFile() const;

    const testing_host::TemporaryProfile profile;
    testing_host::ManualClock clock;
    testing_host::LogRecorder log;
    ZelUnified::UnifiedFactoryOptions::ServicesThread servicesThread =
        ZelUnified::UnifiedFactoryOptions::ServicesThread::Own;
    std::optional<config_model::UnsyncedFiles> unsyncedFiles;
    std::shared_ptr<testing_host::FaultInjectingFileLayer> disk; ///< Null if the disk does not fill up.
    config_model::Pairs policy;
    std::size_t resets = 0;
    bool hasBeenStarted = false; ///< In this run.
    FolderContent filesBeforeStart;
    FolderContent filesAfterStart;
    std::optional<ZelUnified::ProfileLock> lock;
    std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory;
    std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    std::shared_ptr<ZelUnified::ConfigService> service;
    std::vector<std::shared_ptr<config_model::RecordObserver>> observers;
};

} // namespace simulated_year
