#include "ConfigAdapterFixture.h"
#include "stores/LocalFileTestSupport.h"

#include <zel/EncryptFileUtils.h>
#include <zel/LogSink.h>

#include <functional>
#include <future>
#include <thread>

namespace ZelUnified {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

namespace {

/// Runs an action as soon as a line with that text is logged.
class ActingSink final : public zel::logging::LogSink {
public:
    ActingSink(std::string lineText, std::function<void()> whatToRun)
        : text(std::move(lineText)), action(std::move(whatToRun)) {}
    void write(const zel::logging::LogRecord& record) override {
        if (record.text == text) {
            action();
        }
    }

private:
    const std::string text;
    const std::function<void()> action;
};

} // namespace

class ConfigAdapterReset : public ConfigAdapterFixture {
protected:
    void reset(ResetDataOptionEnum::ResetDataOption option = ResetDataOptionEnum::ResetAll) {
        factory->backgroundDispatcher->runAll();
        log.clear();
        adapter->InvokeResetData(option);
    }
    std::filesystem::path write(const std::filesystem::path& relative) {
        const auto path = profile.config() / relative;
        testing_host::writeFile(path, "content of " + relative.string());
        return path;
    }
};

TEST_F(ConfigAdapterReset, RemovesTheUsersSettingsPermanently) {
    loadAndStart();
    adapter->setConfig(L"k", L"v");
    adapter->setInMemoryConfig(L"m", L"v");
    reset();
    EXPECT_EQ(valueOf(L"k"), L"(none)");
    EXPECT_FALSE(service->getConfig(L"k")->getisDefined());
    EXPECT_EQ(valueOf(L"m"), L"(none)");
    unload();
    load();
    EXPECT_EQ(valueOf(L"k"), L"(none)");
}

TEST_F(ConfigAdapterReset, LeavesACompleteAndWorkingChain) {
    loadAndStart();
    reset();
    for (const auto* name : {"LocalFileConfigStore", "RegistryConfigStore", "UrlProvisioningConfigStore",
                             "InMemoryConfigStore", "lumora-config-defaults.xml"}) {
        EXPECT_TRUE(inChain(name)) << name;
    }
    EXPECT_TRUE(adapter->IsFeatureSetStarted(1300));
    adapter->setConfig(L"k", L"new");
    unload();
    load();
    EXPECT_EQ(valueOf(L"k"), L"new");
}

TEST_F(ConfigAdapterReset, SparedStoresKeepTheirValues) {
    givenDefaults({{L"d", L"default"}});
    loadAndStart();
    adapter->setMdmConfig("<a><b><m>mdm</m></b></a>");
    adapter->setUrlProvisioningData(L"?ServicesDomain=example.com");
    adapter->addConfigStore(makeReadOnlyStore("BootstrapConfigStore", 50, {{L"b", L"boot"}}));
    reset();
    EXPECT_EQ(valueOf(L"d"), L"default");
    EXPECT_EQ(valueOf(L"m"), L"mdm");
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"example.com");
    EXPECT_EQ(valueOf(L"b"), L"boot");
    // The user's setting that forbade another URL was deleted with the user's file.
    EXPECT_EQ(valueOf(L"AllowUrlProvisioning"), L"(none)");
}

TEST_F(ConfigAdapterReset, KeepsProvisionedSettingsForTheNextRun) {
    loadAndStart();
    adapter->setUrlProvisioningData(L"?ServicesDomain=example.com");
    const auto before = testing_host::readFile(cacheFile("UrlProvisioningConfigStore"));
    reset();
    EXPECT_EQ(testing_host::readFile(cacheFile("UrlProvisioningConfigStore")), before);
    unload();
    load();
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"example.com");
}

TEST_F(ConfigAdapterReset, KeepsFourFilesUnchangedAndDeletesAllOthers) {
    const std::vector<std::filesystem::path> kept{
        write("deviceData4.properties"), write("lumora-config-user.xml"), write("installationId.txt"),
        write(std::filesystem::path("Cache") / "deep" / "INSTALLATIONID.TXT")};
    const std::vector<std::filesystem::path> gone{write("other.log"), write(".hidden"),
                                                  write(std::filesystem::path("Cache") / "cachedTftp.dat")};
    load();
    reset();
    for (const auto& path : kept) {
        EXPECT_EQ(testing_host::readFile(path),
                  "content of " + std::filesystem::relative(path, profile.config()).string());
        const auto line = "file will be excluded from reset deletion: [" + path.filename().string() + "]";
        EXPECT_EQ(levelOf(line), ZelLogLevel::Info);
        EXPECT_EQ(countLogged(line), 1);
    }
    for (const auto& path : gone) {
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
        EXPECT_EQ(levelOf("File: [" + path.string() + "] deleted"), ZelLogLevel::Info);
    }
    EXPECT_TRUE(std::filesystem::is_directory(profile.config() / "Cache" / "deep"));
}

TEST_F(ConfigAdapterReset, DeletesTheUsersBackupFirst) {
    const auto other = write("a.log");
    const auto file = write("lumoraLocalConfig.dat");
    const auto backup = write("lumoraLocalConfig_backup.dat");
    load();
    reset();
    std::vector<std::string> deleted;
    for (const auto& line : logged()) {
        if (line.starts_with("File: [")) {
            deleted.push_back(line);
        }
    }
    const auto lineOf = [](const auto& path) { return "File: [" + path.string() + "] deleted"; };
    EXPECT_THAT(deleted, testing::ElementsAre(lineOf(backup), lineOf(other), lineOf(file)));
}

TEST_F(ConfigAdapterReset, LogsAFileItCannotDeleteAndDeletesTheOthers) {
    const auto first = write("a.log");
    const auto vanishing = write("b.log");
    const auto last = write("c.log");
    load();
    // The file is already listed when it vanishes, so its deletion fails.
    const auto remover = std::make_shared<ActingSink>("File: [" + first.string() + "] deleted",
                                                      [&] { std::filesystem::remove(vanishing); });
    zel::logging::addSink(remover);
    reset();
    zel::logging::removeSink(remover);
    EXPECT_THAT(logged(), Contains("Unable to delete file: [" + vanishing.string() + "]"));
    EXPECT_EQ(levelOf("Unable to delete file: [" + vanishing.string() + "]"), ZelLogLevel::Error);
    EXPECT_FALSE(std::filesystem::exists(last));
    EXPECT_EQ(logged().back(), "ConfigAdapter reset.");
}

TEST_F(ConfigAdapterReset, LinkOutOfTheDirectoryIsRemovedAndNotFollowed) {
    testing_host::writeFile(profile.root() / "outside" / "precious.txt", "precious");
    std::filesystem::create_directory_symlink(profile.root() / "outside", profile.config() / "link");
    load();
    reset();
    EXPECT_EQ(testing_host::readFile(profile.root() / "outside" / "precious.txt"), "precious");
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(profile.config() / "link")));
}

TEST_F(ConfigAdapterReset, DeletesThePolicyOfTheUserWithItsSubkeys) {
    givenPolicy(L"PolicyKey", L"policy");
    loadAndStart();
    reset();
    EXPECT_EQ(valueOf(L"PolicyKey"), L"(none)");
    EXPECT_FALSE(service->getConfig(L"PolicyKey")->getisDefined());
}

TEST_F(ConfigAdapterReset, DeletesTheCalendarHelperWithoutALine) {
    const auto helper = profile.data() / "Google calendar" / "calendar.bat";
    testing_host::writeFile(helper, "x");
    load();
    reset();
    EXPECT_FALSE(std::filesystem::exists(helper));
    EXPECT_FALSE(log.mentions("calendar.bat"));
    reset();
    EXPECT_FALSE(log.mentions("calendar.bat"));
}

TEST_F(ConfigAdapterReset, LogsItsBeginningAndEnd) {
    load();
    reset();
    EXPECT_EQ(logged().front(), "About to reset the ConfigAdapter...");
    EXPECT_EQ(logged().back(), "ConfigAdapter reset.");
    EXPECT_EQ(levelOf(logged().front()), ZelLogLevel::Info);
    EXPECT_EQ(levelOf(logged().back()), ZelLogLevel::Info);
}

TEST_F(ConfigAdapterReset, WorksTheSameBeforeTheStart) {
    load();
    adapter->setConfig(L"k", L"v");
    reset();
    EXPECT_EQ(valueOf(L"k"), L"(none)");
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
    EXPECT_TRUE(inChain("LocalFileConfigStore"));
}

TEST_F(ConfigAdapterReset, LogsNothingIfTheCalendarFolderIsMissing) {
    load();
    ASSERT_FALSE(std::filesystem::exists(profile.data() / "Google calendar"));
    reset();
    EXPECT_FALSE(log.mentions("alendar"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), Not(Contains(HasSubstr("delete"))));
    EXPECT_EQ(logged().back(), "ConfigAdapter reset.");
}

/// Tests everything that a reset does, for each option.
class ConfigAdapterResetOption : public ConfigAdapterReset,
                                 public testing::WithParamInterface<ResetDataOptionEnum::ResetDataOption> {
protected:
    void SetUp() override {
        givenDefaults({{L"d", L"default"}});
        givenPolicy(L"p", L"policy");
        testing_host::writeFile(calendarHelper, "x");
        loadAndStart();
        adapter->setMdmConfig("<a><b><m>mdm</m></b></a>");
        adapter->setUrlProvisioningData(L"?ServicesDomain=example.com");
        adapter->addConfigStore(makeReadOnlyStore("BootstrapConfigStore", 50, {{L"b", L"boot"}}));
        adapter->addConfigStore(makeReadOnlyStore("devOverrideConfigStore", 1, {{L"o", L"override"}}));
        adapter->addConfigStore(makeCachingStore("TftpConfigStore", 40, {{L"t", L"tftp"}}));
        adapter->setConfig(L"k", L"user");
        adapter->setInMemoryConfig(L"v", L"volatile");
        factory->backgroundDispatcher->runAll();
        ASSERT_TRUE(std::filesystem::exists(userFile));
        ASSERT_TRUE(std::filesystem::exists(cacheFile("TftpConfigStore")));
        testing_host::writeFile(backupFile, "x");
        testing_host::writeFile(cacheFile("Orphan"), "x");
        for (const auto& path : otherFiles) {
            write(path);
        }
    }
    void reset() { ConfigAdapterReset::reset(GetParam()); }

    const std::filesystem::path calendarHelper = profile.data() / "Google calendar" / "calendar.bat";
    const std::filesystem::path userFile = profile.config() / "lumoraLocalConfig.dat";
    const std::filesystem::path backupFile = profile.config() / "lumoraLocalConfig_backup.dat";
    const std::vector<std::filesystem::path> otherFiles{"other.log", "deviceData4.properties", "lumora-config-user.xml",
                                                        "installationId.txt"};
};

TEST_P(ConfigAdapterResetOption, EmptiesAllStoresButTheFiveSparedOnes) {
    reset();
    for (const auto* key : {L"k", L"v", L"p", L"t"}) {
        EXPECT_EQ(valueOf(key), L"(none)") << KyrCoreUtils::toString(key);
        EXPECT_FALSE(service->getConfig(key)->getisDefined()) << KyrCoreUtils::toString(key);
    }
    EXPECT_EQ(valueOf(L"d"), L"default");
    EXPECT_EQ(valueOf(L"m"), L"mdm");
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"example.com");
    EXPECT_EQ(valueOf(L"b"), L"boot");
    EXPECT_EQ(valueOf(L"o"), L"override");
}

TEST_P(ConfigAdapterResetOption, DeletesTheFilesOfTheProfileButFour) {
    reset();
    EXPECT_FALSE(std::filesystem::exists(cacheFile("TftpConfigStore"))) << "removed with its store";
    for (const auto& path : {userFile, backupFile, cacheFile("Orphan"), profile.config() / otherFiles[0]}) {
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
        EXPECT_EQ(levelOf("File: [" + path.string() + "] deleted"), ZelLogLevel::Info);
    }
    for (const auto& path : {cacheFile("UrlProvisioningConfigStore"), profile.config() / otherFiles[1],
                             profile.config() / otherFiles[2], profile.config() / otherFiles[3]}) {
        EXPECT_TRUE(std::filesystem::exists(path)) << path;
        EXPECT_EQ(levelOf("file will be excluded from reset deletion: [" + path.filename().string() + "]"),
                  ZelLogLevel::Info);
    }
}

TEST_P(ConfigAdapterResetOption, DeletesTheCalendarHelperAndThePolicy) {
    reset();
    EXPECT_FALSE(std::filesystem::exists(calendarHelper));
    EXPECT_FALSE(registry->hasKey(zel::registry::HKEY_CURRENT_USER, policyPath));
}

TEST_P(ConfigAdapterResetOption, StopsTheTimers) {
    const testing_host::LogRecorder debugLog(testing_host::LogRecorder::Debug::On);
    reset();
    EXPECT_TRUE(debugLog.mentions("Removing all timers, which should stop them all"));
}

TEST_P(ConfigAdapterResetOption, RebuildsTheChainBetweenItsFirstAndItsLastLine) {
    reset();
    for (const auto* name :
         {"LocalFileConfigStore", "RegistryConfigStore", "UrlProvisioningConfigStore", "InMemoryConfigStore",
          "lumora-config-defaults.xml", "MdmConfigStore", "BootstrapConfigStore", "devOverrideConfigStore"}) {
        EXPECT_TRUE(inChain(name)) << name;
    }
    EXPECT_FALSE(inChain("TftpConfigStore"));
    EXPECT_TRUE(adapter->IsFeatureSetStarted(configServiceId));
    EXPECT_EQ(logged().front(), "About to reset the ConfigAdapter...");
    EXPECT_EQ(logged().back(), "ConfigAdapter reset.");
}

TEST_P(ConfigAdapterResetOption, LeavesOnlySparedValuesForTheNextRun) {
    reset();
    unload();
    load();
    for (const auto* key : {L"k", L"v", L"p", L"t", L"b", L"o"}) {
        EXPECT_EQ(valueOf(key), L"(none)") << KyrCoreUtils::toString(key);
    }
    EXPECT_EQ(valueOf(L"d"), L"default");
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"example.com");
}

INSTANTIATE_TEST_SUITE_P(Each, ConfigAdapterResetOption,
                         testing::Values(ResetDataOptionEnum::ResetAll, ResetDataOptionEnum::ResetUserData,
                                         ResetDataOptionEnum::ResetOnSignOut));

TEST_F(ConfigAdapterReset, CancelsAPendingBackup) {
    loadAndStart();
    adapter->setConfig(L"k", L"v");
    factory->backgroundDispatcher->runAll();
    const testing_host::LogRecorder debugLog(testing_host::LogRecorder::Debug::On);
    adapter->InvokeResetData(ResetDataOptionEnum::ResetAll);
    EXPECT_TRUE(debugLog.mentions("Removing all timers, which should stop them all"));
    adapter->setConfig(L"k", L"w");
    factory->backgroundDispatcher->runAll();
    EXPECT_FALSE(debugLog.mentions("Timer already exists, do nothing"));
}

class ConfigAdapterResetDuringAWrite : public ConfigAdapterReset {
protected:
    ~ConfigAdapterResetDuringAWrite() override { zel::storage::EncryptFileUtils::overrideKeyProvider(nullptr); }

    void SetUp() override {
        zel::storage::EncryptFileUtils::overrideKeyProvider(keys);
        loadAndStart();
        userStore = adapter->getConfigStoreByName("LocalFileConfigStore");
    }
    /// Sets a key and returns the thread that writes the store's file and waits at the closed gate.
    std::thread startWrite(const std::shared_ptr<ConfigStore>& store) {
        // The write is so large, and the table so small, that a reset that did not wait would list the files first.
        store->storeValue(L"k", std::wstring(4'000'000, L'v'));
        keys->close();
        std::thread writer([store] { store->persistValues(); });
        EXPECT_TRUE(keys->waitForWriter());
        store->storeValue(L"k", L"v");
        return writer;
    }
    /// Reads a key and opens the gate when the reset has emptied the store.
    void expectThatAResetWaitsFor(std::thread writer, ConfigStore& store) {
        auto reset =
            std::async(std::launch::async, [this] { adapter->InvokeResetData(ResetDataOptionEnum::ResetAll); });
        while (!store.getKeys().empty()) {
            std::this_thread::yield();
        }
        EXPECT_EQ(valueOf(L"k"), L"(none)"); // would block for ever if the reset waited with the chain's lock held
        keys->open();
        writer.join();
        reset.get();
        EXPECT_FALSE(std::filesystem::exists(profile.config() / "lumoraLocalConfig.dat"));
        EXPECT_FALSE(std::filesystem::exists(profile.config() / "other.dat"));
        EXPECT_EQ(valueOf(L"k"), L"(none)");
    }

    const std::shared_ptr<xml_test::GatedKeyProvider> keys = std::make_shared<xml_test::GatedKeyProvider>();
    std::shared_ptr<ConfigStore> userStore;
};

TEST_F(ConfigAdapterResetDuringAWrite, WaitsForTheWrite) {
    expectThatAResetWaitsFor(startWrite(userStore), *userStore);
}

TEST_F(ConfigAdapterResetDuringAWrite, WaitsForTheWriteOfAStoreThatAStopHasRemoved) {
    std::thread writer = startWrite(userStore);
    adapter->StopFeatureSet(configServiceId, nullptr);
    expectThatAResetWaitsFor(std::move(writer), *userStore);
}

TEST_F(ConfigAdapterResetDuringAWrite, WaitsForTheWriteOfAFileOfAnotherService) {
    const auto store = std::make_shared<LocalFileConfigStore>("OtherStore", 700, profile.config().string(), "other.dat",
                                                              false, false, true);
    adapter->addConfigStore(store);
    expectThatAResetWaitsFor(startWrite(store), *store);
}

TEST_F(ConfigAdapterResetDuringAWrite, OfOneStoreDoesNotWait) {
    std::thread writer = startWrite(userStore);
    adapter->resetConfigData("LocalFileConfigStore"); // would block for ever if it waited
    EXPECT_EQ(valueOf(L"k"), L"(none)");
    keys->open();
    writer.join();
}

/// Removes the user's store from the chain before its queued write runs.
struct RemovalBeforeTheWrite {
    const char* name;
    void (*run)(ConfigAdapter& adapter);
};

class ConfigAdapterResetWithQueuedWrites : public ConfigAdapterFixture,
                                           public testing::WithParamInterface<RemovalBeforeTheWrite> {};

TEST_P(ConfigAdapterResetWithQueuedWrites, LeavesNothingOfTheOldSettings) {
    loadAndStart();
    adapter->setConfig(L"k", L"v");
    GetParam().run(*adapter);
    adapter->InvokeResetData(ResetDataOptionEnum::ResetAll);
    unload();
    load();
    EXPECT_EQ(valueOf(L"k"), L"(none)");
}

INSTANTIATE_TEST_SUITE_P(
    After, ConfigAdapterResetWithQueuedWrites,
    testing::Values(RemovalBeforeTheWrite{"AStop",
                                          [](auto& adapter) { adapter.StopFeatureSet(configServiceId, nullptr); }},
                    RemovalBeforeTheWrite{"ARefresh", [](auto& adapter) { adapter.refreshConfigFeatureSet(); }},
                    RemovalBeforeTheWrite{"TwoRefreshes",
                                          [](auto& adapter) {
                                              adapter.refreshConfigFeatureSet();
                                              adapter.setConfig(L"k", L"w");
                                              adapter.refreshConfigFeatureSet();
                                          }}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace ZelUnified
