#include "ConfigStoreManagerFixture.h"

#include <TemporaryProfile.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

class ConfigStoreManagerReset : public ConfigStoreManagerFixture {
protected:
    std::filesystem::path cached(const std::string& name) const { return profile.config() / "Cache" / name; }

    testing_host::TemporaryProfile profile;
};

TEST_F(ConfigStoreManagerReset, KeepsOnlyTheFiveSparedStoresWithTheirKeys) {
    const std::vector<std::string> spared{"UrlProvisioningConfigStore", "BootstrapConfigStore", "MdmConfigStore",
                                          "lumora-config-defaults.xml", "devOverrideConfigStore"};
    for (const auto& name : spared) {
        given(makeReadOnlyStore(name, 50, {{L"k", L"v"}}));
    }
    const auto user = given(makeWritableStore("LocalFileConfigStore", 20, {{L"k", L"u"}}));
    const auto memory = given(makeWritableStore("InMemoryConfigStore", 600, {{L"k", L"m"}}));
    manager.resetConfigData();
    for (const auto& name : spared) {
        ASSERT_TRUE(manager.hasStoreWithName(name));
        EXPECT_FALSE(manager.getStoreByName(name)->getKeys().empty());
    }
    EXPECT_FALSE(manager.hasStoreWithName("LocalFileConfigStore"));
    EXPECT_FALSE(manager.hasStoreWithName("InMemoryConfigStore"));
    EXPECT_TRUE(user->values.empty());
    EXPECT_TRUE(memory->values.empty());
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
}

TEST_F(ConfigStoreManagerReset, AStoreWithASparedNameInAnotherCaseIsRemoved) {
    given(makeReadOnlyStore("mdmconfigstore", 500, {{L"k", L"v"}}));
    manager.resetConfigData();
    EXPECT_FALSE(manager.hasStoreWithName("MdmConfigStore"));
}

TEST_F(ConfigStoreManagerReset, AStoreWithoutANameIsRemoved) {
    given(makeReadOnlyStore("", 500, {{L"k", L"v"}}));
    ASSERT_TRUE(manager.hasStoreWithName(""));
    manager.resetConfigData();
    EXPECT_FALSE(manager.hasStoreWithName(""));
}

TEST_F(ConfigStoreManagerReset, AnnouncesThenEmptiesFromTheLastStoreToTheFirst) {
    given(makeWritableStore("First", 20, {{L"a", L"1"}}));
    given(makeWritableStore("Last", 30, {{L"b", L"2"}}));
    manager.resetConfigData();
    EXPECT_THAT(observer.announcements,
                ElementsAre("b:  [] |  [] undefined deferred", "fire b", "a:  [] |  [] undefined deferred", "fire a"));
    EXPECT_THAT(logged(), ElementsAre("Removing store Last from ConfigManager.", "Removing store: Last",
                                      "Removing all keys for store: Last", "Removing store First from ConfigManager.",
                                      "Removing store: First", "Removing all keys for store: First"));
}

TEST_F(ConfigStoreManagerReset, DeletesTheFileOfACachingStore) {
    given(makeReadOnlyStore("R", 33))->caching = true;
    testing_host::writeFile(cached("cachedR.dat"), "x");
    manager.resetConfigData();
    EXPECT_THAT(logged(),
                ElementsAre("Removing store R from ConfigManager.", "Removed file: " + cached("cachedR.dat").string(),
                            "Removing store: R", "Removing all keys for store: R"));
    EXPECT_EQ(loggedAt(ZelLogLevel::Info), logged());
    EXPECT_FALSE(std::filesystem::exists(cached("cachedR.dat")));
}

TEST_F(ConfigStoreManagerReset, RemovingAStoreDeletesTheFileInTheCallersSpelling) {
    given(makeReadOnlyStore("UrlProvisioningConfigStore", 499));
    testing_host::writeFile(cached("cachedUrlProvisioningConfigStore.dat"), "x");
    testing_host::writeFile(cached("cachedurlprovisioningconfigstore.dat"), "x");
    EXPECT_TRUE(manager.removeStoreWithSameName("urlprovisioningconfigstore"));
    EXPECT_TRUE(std::filesystem::exists(cached("cachedUrlProvisioningConfigStore.dat")));
    EXPECT_FALSE(std::filesystem::exists(cached("cachedurlprovisioningconfigstore.dat")));
}

TEST_F(ConfigStoreManagerReset, RemovingAStoreThatRequestsNoCopyKeepsItsFile) {
    given(makeReadOnlyStore("R", 33));
    testing_host::writeFile(cached("cachedR.dat"), "x");
    EXPECT_TRUE(manager.removeStoreWithSameName("R"));
    EXPECT_TRUE(std::filesystem::exists(cached("cachedR.dat")));
}

TEST_F(ConfigStoreManagerReset, AnObserverMayEmptyTheChainDuringTheReset) {
    for (const auto* name : {"A", "B", "C"}) {
        given(makeWritableStore(name, 33, {{L"k", L"1"}}));
    }
    observer.reaction = [&](const std::wstring&) {
        observer.reaction = nullptr;
        manager.removeStoreWithSameName("A");
        manager.removeStoreWithSameName("B");
    };
    manager.resetConfigData();
    EXPECT_FALSE(manager.hasStoreWithName("A"));
    EXPECT_FALSE(manager.hasStoreWithName("C"));
}

TEST_F(ConfigStoreManagerReset, EmptiesOneStoreWithoutALineOrAnAnnouncement) {
    const auto user = given(makeWritableStore("LocalFileConfigStore", 20, {{L"k", L"u"}}));
    manager.resetConfigData("localfileconfigstore");
    EXPECT_EQ(user->values.size(), 1U);
    EXPECT_THAT(logged(), IsEmpty());
    manager.resetConfigData("LocalFileConfigStore");
    EXPECT_TRUE(user->values.empty());
    EXPECT_TRUE(manager.hasStoreWithName("LocalFileConfigStore"));
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
    EXPECT_THAT(logged(), ElementsAre("Removing all keys for store: LocalFileConfigStore"));
}

TEST_F(ConfigStoreManagerReset, RemovingAllCachedStoresRemovesTheFilesAndTheStoresNamedAfterThem) {
    testing_host::writeFile(cached("cachedA.dat"), "x");
    testing_host::writeFile(cached("cachedB.xml"), "x");
    testing_host::writeFile(cached("notes.txt"), "x");
    testing_host::writeFile(cached("cachedC.DAT"), "x");
    given(makeReadOnlyStore("cachedC.xml", 36));
    given(makeReadOnlyStore("cachedA.xml", 34, {{L"k", L"1"}}));
    given(makeReadOnlyStore("A", 35));
    manager.removeAllCachedStores();
    EXPECT_FALSE(std::filesystem::exists(cached("cachedA.dat")));
    EXPECT_FALSE(std::filesystem::exists(cached("cachedB.xml")));
    EXPECT_TRUE(std::filesystem::exists(cached("notes.txt")));
    EXPECT_TRUE(std::filesystem::exists(cached("cachedC.DAT")));
    EXPECT_TRUE(manager.hasStoreWithName("cachedC.xml"));
    EXPECT_FALSE(manager.hasStoreWithName("cachedA.xml"));
    EXPECT_TRUE(manager.hasStoreWithName("A"));
}

TEST_F(ConfigStoreManagerReset, OtherFilesOfTheCacheFolderAreKeptWithoutALine) {
    for (const auto* name : {"notes.txt", "dat", "cachedC.DAT", "cachedC.dat.bak"}) {
        testing_host::writeFile(cached(name), "x");
    }
    manager.removeAllCachedStores();
    for (const auto* name : {"notes.txt", "dat", "cachedC.DAT", "cachedC.dat.bak"}) {
        EXPECT_TRUE(std::filesystem::exists(cached(name))) << name;
    }
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

} // namespace ZelUnified
