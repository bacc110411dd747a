#include "ConfigStoreManagerFixture.h"

#include <TemporaryProfile.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

class ConfigStoreManagerWrite : public ConfigStoreManagerFixture {
protected:
    std::vector<std::string> tasks() const { return factory->backgroundDispatcher->getTaskNames(); }
};

TEST_F(ConfigStoreManagerWrite, GoesToTheFirstWritableStoreAndIsPersistedLater) {
    given(makeReadOnlyStore("R", 10));
    const auto user = given(makeWritableStore("L", 20));
    const auto second = given(makeWritableStore("M", 30));
    EXPECT_TRUE(manager.storeValue(L"k", L"v"));
    EXPECT_EQ(user->values.at(L"k"), L"v");
    EXPECT_TRUE(second->values.empty());
    EXPECT_THAT(observer.announcements, ElementsAre("k: v [L] |  [] overridden"));
    EXPECT_THAT(tasks(), ElementsAre("ConfigStore::persistValues"));
    EXPECT_EQ(user->timesPersisted, 0);
    factory->backgroundDispatcher->runAll();
    EXPECT_EQ(user->timesPersisted, 1);
}

TEST_F(ConfigStoreManagerWrite, NeverReachesReadOnlyOrVolatileStores) {
    given(makeReadOnlyStore("R", 10));
    given(makeWritableStore("inmemoryconfigstore", 600));
    EXPECT_FALSE(manager.storeValue(L"k", L"v"));
    EXPECT_FALSE(manager.storeValue(ConfigMap{{L"k", L"v"}}));
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_THAT(tasks(), IsEmpty());
}

TEST_F(ConfigStoreManagerWrite, ARefusedValueIsStillPersistedAndAnnounced) {
    given(makeWritableStore("L", 20))->refusesWrites = true;
    EXPECT_FALSE(manager.storeValue(L"k", L"v"));
    EXPECT_THAT(observer.announcements, ElementsAre("k:  [] |  [] undefined"));
    EXPECT_THAT(tasks(), ElementsAre("ConfigStore::persistValues"));
}

TEST_F(ConfigStoreManagerWrite, AStoreThatWasRemovedIsStillPersisted) {
    const auto user = given(makeWritableStore("L", 20));
    manager.storeValue(L"k", L"v");
    manager.removeStoreWithSameName("L");
    factory->backgroundDispatcher->runAll();
    EXPECT_EQ(user->timesPersisted, 1);
}

TEST_F(ConfigStoreManagerWrite, AMapIsWrittenToEveryWritableStoreAndAnnouncedForEach) {
    const auto first = given(makeWritableStore("L", 20));
    const auto second = given(makeWritableStore("M", 30));
    given(makeWritableStore("InMemoryConfigStore", 600));
    EXPECT_TRUE(manager.storeValue(ConfigMap{{L"b", L"2"}, {L"a", L"1"}}));
    EXPECT_EQ(first->values, second->values);
    EXPECT_THAT(observer.announcements, ElementsAre("a: 1 [L] |  [] overridden", "b: 2 [L] |  [] overridden",
                                                    "a: 1 [L] |  [] overridden", "b: 2 [L] |  [] overridden"));
    EXPECT_THAT(tasks(), ElementsAre("ConfigStore::persistValues", "ConfigStore::persistValues"));
}

TEST_F(ConfigStoreManagerWrite, IsPostedForPersistingBeforeObserversAreCalled) {
    given(makeWritableStore("L", 20));
    std::vector<std::size_t> posted;
    observer.reaction = [&](const std::wstring&) { posted.push_back(tasks().size()); };
    manager.storeValue(L"k", L"v");
    EXPECT_THAT(posted, ElementsAre(1U));
    given(makeWritableStore("M", 30));
    posted.clear();
    manager.storeValue(ConfigMap{{L"a", L"1"}, {L"b", L"2"}});
    EXPECT_THAT(posted, ElementsAre(1U, 1U, 2U, 2U));
}

TEST_F(ConfigStoreManagerWrite, IsPersistedEvenAfterTheManagerIsDestroyed) {
    const auto user = makeWritableStore("L", 20);
    {
        ConfigStoreManager destroyedManager(factory);
        destroyedManager.addStore(user);
        destroyedManager.storeValue(L"k", L"v");
    }
    factory->backgroundDispatcher->runAll();
    EXPECT_EQ(user->timesPersisted, 1);
}

TEST_F(ConfigStoreManagerWrite, AnObserverMayRemoveAndAddStoresDuringTheWriteOfAMap) {
    std::weak_ptr<ConfigStore> removed = given(makeWritableStore("M", 30));
    given(makeWritableStore("L", 20));
    observer.reaction = [&](const std::wstring&) {
        observer.reaction = nullptr;
        // Only the walk itself keeps the removed store alive.
        manager.removeStoreWithSameName("M");
        factory->backgroundDispatcher->clear();
        for (int i = 0; i < 8; ++i) {
            manager.addStore(makeWritableStore("New" + std::to_string(i), i));
        }
    };
    EXPECT_TRUE(manager.storeValue(ConfigMap{{L"a", L"1"}, {L"b", L"2"}}));
    EXPECT_EQ(valueOf(L"b"), L"2");
    EXPECT_FALSE(manager.hasStoreWithName("M"));
    EXPECT_TRUE(manager.hasStoreWithName("New7"));
    factory->backgroundDispatcher->runAll();
    EXPECT_TRUE(removed.expired());
}

TEST_F(ConfigStoreManagerWrite, ARefusedPairOfAMapIsAWarningWithOneCharacter) {
    given(makeWritableStore("L", 20))->refusesWrites = true;
    EXPECT_TRUE(manager.storeValue(ConfigMap{{L"", L"0"}, {L"secretKey", L"1"}}));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning),
                ElementsAre("Unable to store the value with key: ", "Unable to store the value with key: s"));
}

TEST_F(ConfigStoreManagerWrite, AnEmptyMapSucceedsIfThereIsAWritableStore) {
    given(makeWritableStore("L", 20));
    EXPECT_TRUE(manager.storeValue(ConfigMap{}));
    EXPECT_THAT(tasks(), ElementsAre("ConfigStore::persistValues"));
}

TEST_F(ConfigStoreManagerWrite, VolatileValueIsAnnouncedAndNotPersisted) {
    given(makeWritableStore("InMemoryConfigStore", 600));
    EXPECT_TRUE(manager.setInMemoryValue(L"k", L"v"));
    EXPECT_THAT(observer.announcements, ElementsAre("k: v [InMemoryConfigStore] |  [] overridden"));
    EXPECT_THAT(tasks(), IsEmpty());
}

TEST_F(ConfigStoreManagerWrite, VolatileValueWithoutAVolatileStoreIsRefused) {
    given(makeWritableStore("L", 20));
    EXPECT_FALSE(manager.setInMemoryValue(L"k", L"v"));
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerWrite, RemovalRemovesOldAndNewNameFromEveryWritableStore) {
    const auto user = given(makeWritableStore("L", 20, {{L"TftpServer1", L"1"}, {L"TFTPPrimaryServer", L"2"}}));
    const auto memory = given(makeWritableStore("InMemoryConfigStore", 600, {{L"TFTPPrimaryServer", L"3"}}));
    const auto admin = given(makeReadOnlyStore("R", 700, {{L"TftpServer1", L"a"}}));
    EXPECT_TRUE(manager.removeValue(L"TftpServer1"));
    EXPECT_TRUE(user->values.empty());
    EXPECT_TRUE(memory->values.empty());
    EXPECT_EQ(admin->values.size(), 1U);
    EXPECT_EQ(tasks().size(), 3U);
    EXPECT_THAT(observer.announcements, ElementsAre("TFTPPrimaryServer: a [R] | a [R]"));
}

TEST_F(ConfigStoreManagerWrite, RemovalByTheOldNameIsNotAnnouncedWhileTheNewOneIsHeld) {
    given(makeWritableStore("L", 20, {{L"TFTPPrimaryServer", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"a"}}));
    EXPECT_TRUE(manager.removeValue(L"TftpServer1"));
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_EQ(valueOf(L"TFTPPrimaryServer"), L"a");
}

TEST_F(ConfigStoreManagerWrite, RemovalByTheNewNameAlsoRemovesTheOldName) {
    const auto user = given(makeWritableStore("L", 20, {{L"CtiServer1", L"1"}}));
    EXPECT_TRUE(manager.removeValue(L"CTIPrimaryServer"));
    EXPECT_TRUE(user->values.empty());
    EXPECT_THAT(observer.announcements, ElementsAre("CTIPrimaryServer:  [] |  [] undefined"));
}

TEST_F(ConfigStoreManagerWrite, RemovingAnUnheldKeyAnnouncesAndPersistsNothing) {
    given(makeWritableStore("L", 20));
    given(makeReadOnlyStore("R", 33, {{L"k", L"a"}}));
    EXPECT_FALSE(manager.removeValue(L"k"));
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_THAT(tasks(), IsEmpty());
}

class ConfigStoreManagerProvisioning : public ConfigStoreManagerWrite {
protected:
    testing_host::TemporaryProfile profile;
    const std::filesystem::path copy = profile.config() / "Cache" / "cachedUrlProvisioningConfigStore.dat";
};

TEST_F(ConfigStoreManagerProvisioning, CreatesAStoreOfTheAllowedKeysAndForbidsASecondUrl) {
    const auto user = given(makeWritableStore("LocalFileConfigStore", 20));
    EXPECT_TRUE(manager.setUrlProvisioningData(L"app://x?ServicesDomain=example.com&Foreign=1"));
    const auto store = manager.getStoreByName("UrlProvisioningConfigStore");
    ASSERT_TRUE(store);
    EXPECT_EQ(store->getPriority(), 499);
    EXPECT_THAT(store->getKeys(), ElementsAre(L"ServicesDomain"));
    EXPECT_TRUE(std::filesystem::exists(copy));
    EXPECT_EQ(user->values.at(L"AllowUrlProvisioning"), L"False");
    EXPECT_EQ(logged().front(), "setting url provisioning data");
    EXPECT_FALSE(log.mentions("Foreign"));
}

TEST_F(ConfigStoreManagerProvisioning, AUrlWithoutAnAllowedPairChangesNothing) {
    given(makeWritableStore("LocalFileConfigStore", 20));
    EXPECT_FALSE(manager.setUrlProvisioningData(L"app://x?ServicesDomain"));
    EXPECT_FALSE(manager.hasStoreWithName("UrlProvisioningConfigStore"));
    EXPECT_FALSE(std::filesystem::exists(copy));
    EXPECT_FALSE(manager.setUrlProvisioningData(L"app://x?Foreign=1"));
    EXPECT_FALSE(manager.setUrlProvisioningData(L""));
    EXPECT_THAT(log.getTexts(loggerName), testing::Each("setting url provisioning data"));
    EXPECT_EQ(log.getRecords().size(), 3U);
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerProvisioning, ASecondUrlReplacesTheStore) {
    manager.setUrlProvisioningData(L"?ServicesDomain=one&IP_MODE=4");
    manager.setUrlProvisioningData(L"?ServicesDomain=two");
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"two");
    EXPECT_EQ(valueOf(L"IP_MODE"), L"(none)");
}

TEST_F(ConfigStoreManagerProvisioning, AUrlIsAcceptedEvenIfNoStoreCanForbidASecondOne) {
    EXPECT_TRUE(manager.setUrlProvisioningData(L"?ServicesDomain=one"));
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"one");
    EXPECT_EQ(valueOf(L"AllowUrlProvisioning"), L"(none)");
}

TEST_F(ConfigStoreManagerProvisioning, RemovingTheStoreDeletesItsFile) {
    manager.setUrlProvisioningData(L"?ServicesDomain=one");
    EXPECT_TRUE(manager.removeStoreWithSameName("UrlProvisioningConfigStore"));
    EXPECT_FALSE(std::filesystem::exists(copy));
}

} // namespace ZelUnified
