#pragma once

#include "featuresets/adapters/config/ConfigAdapterFixture.h"

#include <zel/EncryptFileUtils.h>

#include <FaultInjectingFileLayer.h>
#include <ManualClock.h>

#include <filesystem>
#include <memory>
#include <string>

namespace ZelUnified {

/// A whole service on a temporary profile whose protected files use a fault-injecting layer. A test may construct
/// several, one at a time.
class FaultySession final : public ConfigAdapterFixture {
public:
    FaultySession();
    ~FaultySession() override;
    void TestBody() override {}

    /// Uses the file layer of the platform.
    void useRealDisk();

    /// Creates the files of an earlier run: the user's two, the copy of a downloaded document, that of a provisioning
    /// link, and those that the report quotes. The values are "old".
    void leaveFiles();
    /// Ends the run and drops pending writes.
    void unload();
    /// Ends the run and starts the next one on the same files.
    void restart();

    /// Runs the pending background tasks, but not the backup.
    void persist() { factory->backgroundDispatcher->runAll(); }
    void persistAndBackUp();
    void download(const std::wstring& value);
    bool provision(const std::wstring& value);
    std::wstring report() const;

    bool isLogged(const std::string& text) const { return debugLog.mentions(text); }
    void forgetLog() { debugLog.clear(); }

    std::filesystem::path file(const std::string& name) const { return profile.config() / name; }
    /// Returns the content of a protected file on the disk, or "" if it is unreadable.
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

/// Sets all persisted data of the session to this value and writes it.
void changeAll(FaultySession& session, const std::wstring& value);
void expectAtTheNextStart(FaultySession& session, const std::wstring& value);

constexpr const char* mainFile = "lumoraLocalConfig.dat";
constexpr const char* backupFile = "lumoraLocalConfig_backup.dat";
constexpr const char* downloadedStore = "Downloaded";
constexpr const char* provisioningStore = "UrlProvisioningConfigStore";
constexpr const char* quotedFiles[] = {"home-fenn-info.dat", "service-location.dat", "SSOAuthInfoStore.dat"};

} // namespace ZelUnified
