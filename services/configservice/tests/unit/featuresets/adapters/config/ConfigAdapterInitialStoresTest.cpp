#include "ConfigAdapterFixture.h"

#include <kyr/FileUtils.h>

#include <InMemoryConfigStore.h>
#include <LocalFileConfigStore.h>

namespace ZelUnified {

using testing::ElementsAre;

class ConfigAdapterInitialStores : public ConfigAdapterFixture {
protected:
    int priorityOf(const std::string& name) { return adapter->getConfigStoreByName(name)->getPriority(); }

    template <class Kind>
    bool isA(const std::string& name) {
        return std::dynamic_pointer_cast<Kind>(adapter->getConfigStoreByName(name)) != nullptr;
    }
};

TEST_F(ConfigAdapterInitialStores, HaveTheirPriorities) {
    load();
    EXPECT_EQ(priorityOf("LocalFileConfigStore"), 20);
    EXPECT_EQ(priorityOf("RegistryConfigStore"), 33);
    EXPECT_EQ(priorityOf("UrlProvisioningConfigStore"), 499);
    EXPECT_EQ(priorityOf("InMemoryConfigStore"), 600);
    EXPECT_EQ(priorityOf("lumora-config-defaults.xml"), 2147483647);
}

TEST_F(ConfigAdapterInitialStores, AreAddedOneAfterTheOther) {
    load();
    std::vector<std::string> arrivals;
    for (const auto& line : log.getTexts("ConfigService-ConfigStoreManager")) {
        if (line.starts_with("adding new store: ")) {
            arrivals.push_back(line.substr(18, line.find(',') - 18));
        }
    }
    EXPECT_THAT(arrivals, ElementsAre("lumora-config-defaults.xml", "InMemoryConfigStore", "LocalFileConfigStore",
                                      "RegistryConfigStore", "UrlProvisioningConfigStore"));
}

TEST_F(ConfigAdapterInitialStores, AMissingDefaultsFileLeavesAnEmptyStore) {
    load();
    EXPECT_TRUE(adapter->getConfigStoreByName("lumora-config-defaults.xml")->getKeys().empty());
    EXPECT_TRUE(isA<LocalFileConfigStore>("LocalFileConfigStore"));
    // The directory is passed with its separator, and the store appends its own.
    const auto separator = KyrCoreUtils::FileUtils::FileSeparator();
    EXPECT_TRUE(log.mentions("Read config FAILED, config file doesn't exist: " + profile.resources().string() +
                             separator + separator + "lumora-config-defaults.xml"));
}

TEST_F(ConfigAdapterInitialStores, InTheSdkModeTheUsersStoreIsVolatileUnderItsName) {
    givenDefaults({{L"Lumora_SDK_Mode", L"true"}});
    load();
    start();
    EXPECT_TRUE(isA<InMemoryConfigStore>("LocalFileConfigStore"));
    EXPECT_EQ(priorityOf("LocalFileConfigStore"), 20);
    EXPECT_TRUE(adapter->setConfig(L"k", L"v"));
    factory->backgroundDispatcher->runAll();
    EXPECT_FALSE(std::filesystem::exists(profile.config() / "lumoraLocalConfig.dat"));
    EXPECT_TRUE(inChain("UrlProvisioningConfigStore"));
}

TEST_F(ConfigAdapterInitialStores, TheSdkModeIsReadAgainAtEachRefresh) {
    loadAndStart();
    adapter->addConfigStore(makeReadOnlyStore("Switch", 10, {{L"Lumora_SDK_Mode", L"1"}}));
    adapter->refreshConfigFeatureSet();
    EXPECT_TRUE(isA<InMemoryConfigStore>("LocalFileConfigStore"));
}

TEST_F(ConfigAdapterInitialStores, StartLeavesAnExistingStoreOfTheNameUntouched) {
    givenDefaults({{L"Lumora_SDK_Mode", L"on"}});
    load();
    const auto before = adapter->getConfigStoreByName("LocalFileConfigStore");
    start();
    EXPECT_EQ(adapter->getConfigStoreByName("LocalFileConfigStore"), before);
}

TEST_F(ConfigAdapterInitialStores, OnlyConstructionAndRefreshCreateAUsersStoreWithABackup) {
    loadAndStart();
    const testing_host::LogRecorder debugLog(testing_host::LogRecorder::Debug::On);
    adapter->setConfig(L"k", L"1");
    factory->backgroundDispatcher->runAll();
    EXPECT_TRUE(debugLog.mentions("Attempting to schedule timer for file: lumoraLocalConfig_backup.dat"));
    adapter->StopFeatureSet(1300, nullptr);
    start();
    const testing_host::LogRecorder afterRestart(testing_host::LogRecorder::Debug::On);
    adapter->setConfig(L"k", L"2");
    factory->backgroundDispatcher->runAll();
    EXPECT_FALSE(afterRestart.mentions("Attempting to schedule timer"));
}

TEST_F(ConfigAdapterInitialStores, PolicyIsReadBelowTheSoftwareKey) {
    givenPolicy(L"PolicyKey", L"policy");
    load();
    EXPECT_EQ(recordOf(L"PolicyKey"), L"policy");
    EXPECT_EQ(service->getConfig(L"PolicyKey")->getValueStoreName(), L"RegistryConfigStore");
}

TEST_F(ConfigAdapterInitialStores, EachStoreOverridesTheStoresBehindIt) {
    givenDefaults({{L"k", L"defaults"}});
    givenPolicy(L"k", L"policy");
    loadAndStart();
    adapter->setMdmConfig("<a><b><k>mdm</k></b></a>");
    adapter->setInMemoryConfig(L"k", L"memory");
    adapter->addConfigStore(makeReadOnlyStore("Document", 100, {{L"k", L"document"}}));
    adapter->setConfig(L"k", L"user");
    const std::vector<std::pair<std::string, std::wstring>> expected{
        {"LocalFileConfigStore", L"user"},  {"RegistryConfigStore", L"policy"},
        {"Document", L"document"},          {"MdmConfigStore", L"mdm"},
        {"InMemoryConfigStore", L"memory"}, {"lumora-config-defaults.xml", L"defaults"}};
    for (const auto& [store, value] : expected) {
        EXPECT_EQ(valueOf(L"k"), value);
        EXPECT_EQ(recordOf(L"k"), value);
        adapter->removeConfigStore(store);
    }
    EXPECT_EQ(valueOf(L"k"), L"(none)");
    EXPECT_FALSE(service->getConfig(L"k")->getisDefined());
}

TEST_F(ConfigAdapterInitialStores, EachReadOfTheirConstructionIsGuarded) {
    givenDefaults({{L"PrimaryConfigStores", L"A:1;B:2;"}});
    load();
    // The SDK mode is read for the user's store and for each of the two copies.
    EXPECT_EQ(countLogged("Config FeatureSet Not Started"), 3);
    EXPECT_EQ(levelOf("Config FeatureSet Not Started"), ZelLogLevel::Error);
    log.clear();
    start();
    adapter->refreshConfigFeatureSet();
    EXPECT_EQ(countLogged("Config FeatureSet Not Started"), 0);
}

TEST_F(ConfigAdapterInitialStores, AreLoggedInDebugLines) {
    load();
    EXPECT_EQ(countLogged("adding initial config stores"), 0);
    EXPECT_EQ(countLogged("adding cached config stores"), 0);
    unload();
    const testing_host::LogRecorder debugLog(testing_host::LogRecorder::Debug::On);
    load();
    std::vector<std::string> lines;
    for (const auto& record : debugLog.getRecords()) {
        if (record.logger == loggerName && record.level == ZelLogLevel::Debug) {
            lines.push_back(record.text);
        }
    }
    EXPECT_THAT(lines, ElementsAre("adding initial config stores", "adding cached config stores"));
}

} // namespace ZelUnified
