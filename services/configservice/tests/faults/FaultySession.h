#pragma once

#include "featuresets/adapters/config/ConfigAdapterFixture.h"

#include <zel/EncryptFileUtils.h>

#include <FaultInjectingFileLayer.h>
#include <ManualClock.h>

#include <filesystem>
#include <memory>
#include <string>

namespace ZelUnified {

/// A whole service on a profile of its own whose protected files go through a fault-injecting layer. Made as often as a
/// test needs, one at a time.
class FaultySession final : public ConfigAdapterFixture {
public:
    FaultySession();
    ~FaultySession() override;
    void TestBody() override {}

    /// For what the platform itself is to answer.
    void useRealDisk();

    /// Leaves the files of an earlier run behind: the user's two, a downloaded document's copy, a provisioning link's
    /// and those that the report quotes. The values are "old".
    void leaveFiles();
    /// Ends the run, and with it what waits to be written.
    void unload();
    /// Ends the run and begins the next one on the same files.
    void restart();

    /// Runs what waits in the background, the backup not included.
    void persist() { factory->backgroundDispatcher->runAll(); }
    void persistAndBackUp();
    void download(const std::wstring& value);
    bool provision(const std::wstring& value);
    std::wstring report() const;

    bool isLogged(const std::string& text) const { return debugLog.mentions(text); }
    void forgetLog() { debugLog.clear(); }

    std::filesystem::path file(const std::string& name) const { return profile.config() / name; }
    /// What a protected file holds on the disk; "" when it can't be read.
    static std::string
    clearTextOf(const std::filesystem::path& path,
                zel::storage::FileCategoryType::FileCategory category = zel::storage::FileCategoryType::UserData);

    using ConfigAdapterFixture::adapter;
    using ConfigAdapterFixture::cacheFile;
    using ConfigAdapterFixture::givenDefaults;
    using ConfigAdapterFixture::givenPolicy;
    using ConfigAdapterFixture::inChain;
    using ConfigAdapterFixture::loadAndStart;
    using ConfigAdapterFixture::makeCachingStore;
    using ConfigAdapterFixture::profile;
    using ConfigAdapterFixture::valueOf;

    const std::shared_ptr<testing_host::FaultInjectingFileLayer> layer =
        std::make_shared<testing_host::FaultInjectingFileLayer>();

private:
    std::shared_ptr<zel::storage::FileLayer> disk = layer;
    testing_host::ManualClock clock;
    testing_host::LogRecorder debugLog{testing_host::LogRecorder::Debug::On};
};

/// Gives all that the session keeps on the disk this value, and lets it be written.
void changeAll(FaultySession& session, const std::wstring& value);
void expectAtTheNextStart(FaultySession& session, const std::wstring& value);

constexpr const char* mainFile = "lumoraLocalConfig.dat";
constexpr const char* backupFile = "lumoraLocalConfig_backup.dat";
constexpr const char* downloadedStore = "Downloaded";
constexpr const char* provisioningStore = "UrlProvisioningConfigStore";
constexpr const char* quotedFiles[] = {"home-fenn-info.dat", "service-location.dat", "SSOAuthInfoStore.dat"};

} // namespace ZelUnified
