#include "ConfigAdapterFixture.h"

#include <zel/LogSink.h>

namespace ZelUnified {

using testing::Contains;

namespace {

/// Deletes a file as soon as a line of that text is logged.
class Meddler final : public zel::logging::LogSink {
public:
    Meddler(std::string lineText, std::filesystem::path filePath)
        : text(std::move(lineText)), path(std::move(filePath)) {}
    void write(const zel::logging::LogRecord& record) override {
        if (record.text == text) {
            std::filesystem::remove(path);
        }
    }

private:
    const std::string text;
    const std::filesystem::path path;
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

TEST_F(ConfigAdapterReset, TakesTheUsersSettingsForGood) {
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

TEST_F(ConfigAdapterReset, ChainIsCompleteAfterwardsAndWorks) {
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
    // The user's own word that forbade another URL is gone with the user's file.
    EXPECT_EQ(valueOf(L"AllowUrlProvisioning"), L"(none)");
}

TEST_F(ConfigAdapterReset, ProvisionedSettingsSurviveIntoTheNextRun) {
    loadAndStart();
    adapter->setUrlProvisioningData(L"?ServicesDomain=example.com");
    const auto before = testing_host::readFile(cacheFile("UrlProvisioningConfigStore"));
    reset();
    EXPECT_EQ(testing_host::readFile(cacheFile("UrlProvisioningConfigStore")), before);
    unload();
    load();
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"example.com");
}

TEST_F(ConfigAdapterReset, FourFilesStayByteForByteAndAllOthersGo) {
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
        EXPECT_EQ(levelOf("file will be excluded from reset deletion: [" + path.filename().string() + "]"),
                  ZelLogLevel::Info);
    }
    for (const auto& path : gone) {
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
        EXPECT_EQ(levelOf("File: [" + path.string() + "] deleted"), ZelLogLevel::Info);
    }
    EXPECT_TRUE(std::filesystem::is_directory(profile.config() / "Cache" / "deep"));
}

TEST_F(ConfigAdapterReset, FileThatCannotBeDeletedIsAnErrorAndTheOthersGo) {
    const auto first = write("a.log");
    const auto vanishing = write("b.log");
    const auto last = write("c.log");
    load();
    // Listed already when it vanishes, so that its deletion fails.
    const auto meddler = std::make_shared<Meddler>("File: [" + first.string() + "] deleted", vanishing);
    zel::logging::addSink(meddler);
    reset();
    zel::logging::removeSink(meddler);
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

TEST_F(ConfigAdapterReset, PolicyOfTheUserIsDeletedWithAllThatLiesBelow) {
    givenPolicy(L"PolicyKey", L"policy");
    loadAndStart();
    reset();
    EXPECT_EQ(valueOf(L"PolicyKey"), L"(none)");
    EXPECT_FALSE(service->getConfig(L"PolicyKey")->getisDefined());
}

TEST_F(ConfigAdapterReset, CalendarHelperGoesInSilence) {
    const auto helper = profile.data() / "Google calendar" / "calendar.bat";
    testing_host::writeFile(helper, "x");
    load();
    reset();
    EXPECT_FALSE(std::filesystem::exists(helper));
    EXPECT_FALSE(log.mentions("calendar.bat"));
    reset();
    EXPECT_FALSE(log.mentions("calendar.bat"));
}

TEST_F(ConfigAdapterReset, TellsItsBeginningAndEnd) {
    load();
    reset();
    EXPECT_EQ(logged().front(), "About to reset the ConfigAdapter...");
    EXPECT_EQ(logged().back(), "ConfigAdapter reset.");
    EXPECT_EQ(levelOf(logged().front()), ZelLogLevel::Info);
    EXPECT_EQ(levelOf(logged().back()), ZelLogLevel::Info);
}

TEST_F(ConfigAdapterReset, BeforeTheStartItWorksTheSame) {
    load();
    adapter->setConfig(L"k", L"v");
    reset();
    EXPECT_EQ(valueOf(L"k"), L"(none)");
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
    EXPECT_TRUE(inChain("LocalFileConfigStore"));
}

TEST_F(ConfigAdapterReset, EveryOptionDoesTheSame) {
    for (const auto option :
         {ResetDataOptionEnum::ResetAll, ResetDataOptionEnum::ResetUserData, ResetDataOptionEnum::ResetOnSignOut}) {
        loadAndStart();
        adapter->setConfig(L"k", L"v");
        reset(option);
        EXPECT_EQ(valueOf(L"k"), L"(none)");
        unload();
    }
}

TEST_F(ConfigAdapterReset, WaitingBackupIsForgotten) {
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

} // namespace ZelUnified
