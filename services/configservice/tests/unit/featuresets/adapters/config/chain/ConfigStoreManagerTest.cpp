#include "ConfigStoreManagerFixture.h"

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

class ConfigStoreManagerTest : public ConfigStoreManagerFixture {};

TEST(ConfigStoreManager, ConstructionIsLogged) {
    const testing_host::LogRecorder log;
    const ConfigStoreManager manager(nullptr);
    EXPECT_THAT(log.getTexts("ConfigService-ConfigStoreManager"),
                ElementsAre("Creating a new instance of the ConfigStoreManager."));
    EXPECT_EQ(log.getRecords().front().level, ZelLogLevel::Info);
    EXPECT_EQ(log.getRecords().front().function, "ZelUnified::ConfigStoreManager::ConfigStoreManager");
}

TEST_F(ConfigStoreManagerTest, ArrivalAnnouncesAllKeysBeforeFiring) {
    manager.addStore(makeReadOnlyStore("R", 33, {{L"b", L"2"}, {L"A", L"1"}}));
    EXPECT_THAT(observer.announcements,
                ElementsAre("A: 1 [R] | 1 [R] deferred", "b: 2 [R] | 2 [R] deferred", "fire A", "fire b"));
}

TEST_F(ConfigStoreManagerTest, ArrivalLogsTheChainInOrder) {
    given(makeReadOnlyStore("Late", 500));
    manager.addStore(makeReadOnlyStore("Early", 20));
    EXPECT_THAT(logged(), ElementsAre("adding new store: Early, Config stores : [Early(20)] [Late(500)]"));
}

TEST_F(ConfigStoreManagerTest, NullStoreIsIgnored) {
    manager.addStore(nullptr);
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST_F(ConfigStoreManagerTest, LowerPriorityNumberWins) {
    given(makeReadOnlyStore("Late", 500, {{L"k", L"late"}}));
    given(makeReadOnlyStore("Early", 20, {{L"k", L"early"}}));
    EXPECT_EQ(valueOf(L"k"), L"early");
}

TEST_F(ConfigStoreManagerTest, AmongEqualPrioritiesTheFirstAddedStoreWins) {
    for (int i = 0; i < 50; ++i) {
        given(makeReadOnlyStore("S" + std::to_string(i), 33, {{L"k", std::to_wstring(i)}}));
    }
    EXPECT_EQ(valueOf(L"k"), L"0");
}

TEST_F(ConfigStoreManagerTest, ExtremePrioritiesAreOrdered) {
    given(makeReadOnlyStore("Last", std::numeric_limits<int>::max(), {{L"k", L"last"}}));
    given(makeReadOnlyStore("First", std::numeric_limits<int>::min(), {{L"k", L"first"}}));
    EXPECT_EQ(valueOf(L"k"), L"first");
}

TEST_F(ConfigStoreManagerTest, ASecondStoreOfANameReplacesTheFirst) {
    given(makeReadOnlyStore("R", 33, {{L"gone", L"1"}, {L"kept", L"1"}}));
    manager.addStore(makeReadOnlyStore("r", 33, {{L"Kept", L"2"}, {L"new", L"2"}}));
    EXPECT_THAT(observer.announcements, ElementsAre("gone:  [] |  [] undefined", "Kept: 2 [r] | 2 [r] deferred",
                                                    "new: 2 [r] | 2 [r] deferred", "fire Kept", "fire new"));
    EXPECT_EQ(valueOf(L"gone"), L"(none)");
    EXPECT_THAT(logged(), ElementsAre("updating existing store: r", "adding new store: r, Config stores : [r(33)]"));
}

TEST_F(ConfigStoreManagerTest, KeysThatAnUpdateRemovesAreAnnouncedWithTheRestOfTheChain) {
    given(makeReadOnlyStore("Rest", 500, {{L"gone", L"rest"}}));
    given(makeReadOnlyStore("R", 33, {{L"gone", L"1"}}));
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_THAT(observer.announcements, ElementsAre("gone: rest [Rest] | rest [Rest]"));
}

TEST_F(ConfigStoreManagerTest, AnUpdateToALowerRankIsAnnouncedTwice) {
    given(makeReadOnlyStore("R", 33, {{L"k", L"1"}}));
    given(makeReadOnlyStore("Other", 40));
    manager.addStore(makeReadOnlyStore("R", 50, {{L"k", L"2"}}));
    EXPECT_THAT(observer.announcements, ElementsAre("k: 2 [R] | 2 [R] deferred", "fire k", //
                                                    "k: 2 [R] | 2 [R] deferred", "fire k"));
}

TEST_F(ConfigStoreManagerTest, AnUpdateToAHigherRankIsAnnouncedOnce) {
    given(makeReadOnlyStore("Other", 40));
    given(makeReadOnlyStore("R", 50, {{L"k", L"1"}}));
    manager.addStore(makeReadOnlyStore("R", 33, {{L"k", L"2"}}));
    EXPECT_THAT(observer.announcements, ElementsAre("k: 2 [R] | 2 [R] deferred", "fire k"));
}

TEST_F(ConfigStoreManagerTest, UpdatingACachingStoreRemovesTheStoreNamedAfterItsFile) {
    const auto live = makeReadOnlyStore("R", 33);
    live->caching = true;
    given(live);
    given(makeReadOnlyStore("cachedR.dat", 34, {{L"k", L"copy"}}));
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_FALSE(manager.hasStoreWithName("cachedR.dat"));
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, UpdatingAnUnknownStoreDoesAndLogsNothing) {
    manager.updateExistingConfigStore(makeReadOnlyStore("R", 33, {{L"k", L"1"}}), {L"old"});
    manager.updateExistingConfigStore(nullptr, {L"old"});
    EXPECT_FALSE(manager.hasStoreWithName("R"));
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST_F(ConfigStoreManagerTest, RemovingAStoreAnnouncesItsKeysWithTheRestOfTheChain) {
    given(makeReadOnlyStore("Rest", 500, {{L"k", L"rest"}}));
    given(makeReadOnlyStore("R", 33, {{L"k", L"1"}, {L"only", L"1"}}));
    EXPECT_TRUE(manager.removeStoreWithSameName("r"));
    EXPECT_THAT(observer.announcements, ElementsAre("k: rest [Rest] | rest [Rest] deferred",
                                                    "only:  [] |  [] undefined deferred", "fire k", "fire only"));
    EXPECT_THAT(logged(), ElementsAre("Removing store: r"));
}

TEST_F(ConfigStoreManagerTest, RemovingAnUnknownStoreLogsAndAnnouncesNothing) {
    EXPECT_FALSE(manager.removeStoreWithSameName("R"));
    EXPECT_THAT(logged(), IsEmpty());
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, StoresThatAreNotLocalAreRemovedFromTheLastToTheFirstWithoutALine) {
    for (const auto* name : {"A", "B", "C"}) {
        const auto store = makeReadOnlyStore(name, 33, {{KyrCoreUtils::toWideString(std::string(name)), L"1"}});
        store->local = std::string(name) == "B";
        given(store);
    }
    manager.removeNonLocalStores();
    EXPECT_THAT(observer.announcements,
                ElementsAre("C:  [] |  [] undefined deferred", "fire C", "A:  [] |  [] undefined deferred", "fire A"));
    EXPECT_TRUE(manager.hasStoreWithName("B"));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ConfigStoreManagerTest, DestroyedStoresStayInTheChain) {
    const auto store = given(makeReadOnlyStore("R", 33, {{L"k", L"1"}}));
    manager.destroyStores();
    EXPECT_EQ(store->timesDestroyed, 1);
    EXPECT_EQ(valueOf(L"k"), L"1");
}

TEST_F(ConfigStoreManagerTest, TheOverrideStoreIsNotLogged) {
    manager.addStore(makeReadOnlyStore("DevOverrideConfigStore", 1, {{L"k", L"override"}}));
    EXPECT_THAT(logged(), IsEmpty());
    EXPECT_EQ(valueOf(L"k"), L"override");
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_THAT(logged(), ElementsAre("adding new store: R, Config stores : [R(33)]"));
    log.clear();
    manager.addStore(makeReadOnlyStore("devOverrideConfigStore", 1));
    manager.removeStoreWithSameName("devOverrideConfigStore");
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ConfigStoreManagerTest, StoresAreFoundIgnoringCase) {
    const auto store = given(makeReadOnlyStore("RegistryConfigStore", 33));
    EXPECT_EQ(manager.getStoreByName("registryconfigstore"), store);
    EXPECT_EQ(manager.getStoreByName("other"), nullptr);
}

TEST_F(ConfigStoreManagerTest, AnOldNameInANewStoreIsAnnouncedUnderTheNewName) {
    manager.addStore(makeReadOnlyStore("X", 50, {{L"TftpServer1", L"a"}, {L"Zed", L"z"}}));
    EXPECT_THAT(observer.announcements,
                ElementsAre("TFTPPrimaryServer: a [X] | a [X] deferred", "Zed: z [X] | z [X] deferred",
                            "fire TFTPPrimaryServer", "fire Zed"));
}

TEST_F(ConfigStoreManagerTest, AnOldNameIsNotAnnouncedWhileAnyStoreHoldsTheNewName) {
    given(makeReadOnlyStore("Last", 500, {{L"TFTPPrimaryServer", L"new"}}));
    manager.addStore(makeReadOnlyStore("X", 50, {{L"TftpServer1", L"old"}}));
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, ReturnsTheNewNameOfEachOldName) {
    const auto newNames = manager.getKeyAliases();
    EXPECT_GE(newNames.size(), 18U);
    const auto found = newNames.find(L"vvm_mailstore_pollinginterval");
    ASSERT_NE(found, newNames.end());
    EXPECT_EQ(found->second, L"VoicmeailPollingInterval");
}

TEST_F(ConfigStoreManagerTest, ChangesOfTheChainAreLoggedAtInfoLevelUnderTheirOperations) {
    manager.addStore(makeReadOnlyStore("R", 33));
    manager.addStore(makeReadOnlyStore("R", 33));
    manager.removeStoreWithSameName("R");
    std::vector<std::string> functions;
    for (const auto& record : log.getRecords()) {
        EXPECT_EQ(record.level, ZelLogLevel::Info) << record.text;
        functions.push_back(record.function);
    }
    EXPECT_THAT(functions,
                ElementsAre("ZelUnified::ConfigStoreManager::addStore", "ZelUnified::ConfigStoreManager::addStore",
                            "ZelUnified::ConfigStoreManager::addStore",
                            "ZelUnified::ConfigStoreManager::removeStoreWithSameName"));
}

TEST_F(ConfigStoreManagerTest, AnUpdateKeepsTheCopyIfTheOldStoreRequestedNone) {
    const auto update = makeReadOnlyStore("R", 33);
    update->caching = true;
    given(makeReadOnlyStore("R", 33));
    given(makeReadOnlyStore("cachedR.dat", 34, {{L"k", L"copy"}}));
    manager.addStore(update);
    EXPECT_TRUE(manager.hasStoreWithName("cachedR.dat"));
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, StoresAreDestroyedInTheOrderOfTheChain) {
    std::vector<std::string> destroyed;
    for (const auto& [name, priority] : {std::pair("Last", 3), std::pair("First", 1), std::pair("Middle", 2)}) {
        const auto store = given(makeReadOnlyStore(name, priority));
        store->whenDestroyed = [&destroyed, name = name] { destroyed.emplace_back(name); };
    }
    manager.destroyStores();
    EXPECT_THAT(destroyed, ElementsAre("First", "Middle", "Last"));
}

} // namespace ZelUnified
