#include "ConfigStoreManagerFixture.h"

#include <ConfigStoreAddedObserver.h>
#include <Watchdog.h>

#include <thread>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class StoreAddedRecorder final : public ConfigStoreAddedObserver {
public:
    void OnConfigStoreAdded(const std::string& storeName) override { names.push_back(storeName); }

    std::vector<std::string> names;
};

} // namespace

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

TEST_F(ConfigStoreManagerTest, ArrivalTellsStoreAddedObserversLaterOnTheBackgroundDispatcher) {
    const auto added = std::make_shared<StoreAddedRecorder>();
    manager.registerConfigStoreAddedObserver(added);
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_THAT(added->names, IsEmpty());
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(),
                ElementsAre("ConfigStoreAddedObserver::OnConfigStoreAdded"));
    factory->backgroundDispatcher->runAll();
    EXPECT_THAT(added->names, ElementsAre("R"));
}

TEST_F(ConfigStoreManagerTest, ArrivalOfAStoreWithoutKeysAnnouncesNothing) {
    const auto added = std::make_shared<StoreAddedRecorder>();
    manager.registerConfigStoreAddedObserver(added);
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_EQ(factory->backgroundDispatcher->getTaskNames().size(), 1U);
}

TEST_F(ConfigStoreManagerTest, ArrivalLogsTheChainInOrder) {
    given(makeReadOnlyStore("Late", 500));
    manager.addStore(makeReadOnlyStore("Early", 20));
    EXPECT_THAT(logged(), ElementsAre("adding new store: Early, Config stores : [Early(20)] [Late(500)]"));
}

TEST_F(ConfigStoreManagerTest, NullStoreIsIgnored) {
    manager.addStore(nullptr);
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ConfigStoreManagerTest, LowerPriorityNumberWins) {
    given(makeReadOnlyStore("Late", 500, {{L"k", L"late"}}));
    given(makeReadOnlyStore("Early", 20, {{L"k", L"early"}}));
    EXPECT_EQ(valueOf(L"k"), L"early");
}

TEST_F(ConfigStoreManagerTest, OfEqualPrioritiesTheFirstAddedAnswers) {
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

TEST_F(ConfigStoreManagerTest, SecondStoreOfANameReplacesTheFirst) {
    given(makeReadOnlyStore("R", 33, {{L"gone", L"1"}, {L"kept", L"1"}}));
    manager.addStore(makeReadOnlyStore("r", 33, {{L"Kept", L"2"}, {L"new", L"2"}}));
    EXPECT_THAT(observer.announcements, ElementsAre("gone:  [] |  [] undefined", "Kept: 2 [r] | 2 [r] deferred",
                                                    "new: 2 [r] | 2 [r] deferred", "fire Kept", "fire new"));
    EXPECT_EQ(valueOf(L"gone"), L"(none)");
    EXPECT_THAT(logged(), ElementsAre("updating existing store: r", "adding new store: r, Config stores : [r(33)]"));
}

TEST_F(ConfigStoreManagerTest, KeysGoneWithAnUpdateFallBackOnTheRestOfTheChain) {
    given(makeReadOnlyStore("Rest", 500, {{L"gone", L"rest"}}));
    given(makeReadOnlyStore("R", 33, {{L"gone", L"1"}}));
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_THAT(observer.announcements, ElementsAre("gone: rest [Rest] | rest [Rest]"));
}

TEST_F(ConfigStoreManagerTest, UpdateThatLandsBehindItsOldPlaceIsAnnouncedTwice) {
    given(makeReadOnlyStore("R", 33, {{L"k", L"1"}}));
    given(makeReadOnlyStore("Other", 40));
    manager.addStore(makeReadOnlyStore("R", 50, {{L"k", L"2"}}));
    EXPECT_THAT(observer.announcements, ElementsAre("k: 2 [R] | 2 [R] deferred", "fire k", //
                                                    "k: 2 [R] | 2 [R] deferred", "fire k"));
}

TEST_F(ConfigStoreManagerTest, UpdateThatLandsAheadIsAnnouncedOnce) {
    given(makeReadOnlyStore("Other", 40));
    given(makeReadOnlyStore("R", 50, {{L"k", L"1"}}));
    manager.addStore(makeReadOnlyStore("R", 33, {{L"k", L"2"}}));
    EXPECT_THAT(observer.announcements, ElementsAre("k: 2 [R] | 2 [R] deferred", "fire k"));
}

TEST_F(ConfigStoreManagerTest, UpdateOfACachingStoreTakesTheStoreNamedAfterItsFileAlong) {
    const auto live = makeReadOnlyStore("R", 33);
    live->caching = true;
    given(live);
    given(makeReadOnlyStore("cachedR.dat", 34, {{L"k", L"copy"}}));
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_FALSE(manager.hasStoreWithName("cachedR.dat"));
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, UpdateOfAnUnknownStoreDoesNothing) {
    manager.updateExistingConfigStore(makeReadOnlyStore("R", 33, {{L"k", L"1"}}), {L"old"});
    manager.updateExistingConfigStore(nullptr, {L"old"});
    EXPECT_FALSE(manager.hasStoreWithName("R"));
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, RemovalAnnouncesTheKeysUnderWhatTheRestSays) {
    given(makeReadOnlyStore("Rest", 500, {{L"k", L"rest"}}));
    given(makeReadOnlyStore("R", 33, {{L"k", L"1"}, {L"only", L"1"}}));
    EXPECT_TRUE(manager.removeStoreWithSameName("r"));
    EXPECT_THAT(observer.announcements, ElementsAre("k: rest [Rest] | rest [Rest] deferred",
                                                    "only:  [] |  [] undefined deferred", "fire k", "fire only"));
    EXPECT_THAT(logged(), ElementsAre("Removing store: r"));
}

TEST_F(ConfigStoreManagerTest, RemovalOfAnUnknownStoreIsSilent) {
    EXPECT_FALSE(manager.removeStoreWithSameName("R"));
    EXPECT_THAT(logged(), IsEmpty());
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, NonLocalStoresAreDroppedFromTheLastToTheFirstWithoutALine) {
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

TEST_F(ConfigStoreManagerTest, OverrideStoreNeverShowsInALog) {
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

TEST_F(ConfigStoreManagerTest, OldNameInAnArrivingStoreIsAnnouncedUnderTheNewOne) {
    manager.addStore(makeReadOnlyStore("X", 50, {{L"TftpServer1", L"a"}, {L"Zed", L"z"}}));
    EXPECT_THAT(observer.announcements,
                ElementsAre("TFTPPrimaryServer: a [X] | a [X] deferred", "Zed: z [X] | z [X] deferred",
                            "fire TFTPPrimaryServer", "fire Zed"));
}

TEST_F(ConfigStoreManagerTest, OldNameIsNotAnnouncedWhileAnyStoreHoldsTheNewOne) {
    given(makeReadOnlyStore("Last", 500, {{L"TFTPPrimaryServer", L"new"}}));
    manager.addStore(makeReadOnlyStore("X", 50, {{L"TftpServer1", L"old"}}));
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, SensitiveKeyIsToldEachTimeAndKnownInAnyCase) {
    manager.setKeySensitive(L"Secret");
    manager.setKeySensitive(L"Secret");
    EXPECT_THAT(observer.announcements, ElementsAre("sensitive Secret", "sensitive Secret"));
    EXPECT_TRUE(manager.isSensitiveKey(L"SECRET"));
    EXPECT_FALSE(manager.isSensitiveKey(L"Secre"));
}

TEST_F(ConfigStoreManagerTest, StoreAddedObserverRegisteredTwiceIsToldTwiceAndLeavesAtOnce) {
    const auto added = std::make_shared<StoreAddedRecorder>();
    manager.registerConfigStoreAddedObserver(added);
    manager.registerConfigStoreAddedObserver(added);
    manager.addStore(makeReadOnlyStore("A", 1));
    factory->backgroundDispatcher->runAll();
    EXPECT_THAT(added->names, ElementsAre("A", "A"));
    log.clear();
    manager.unregisterConfigStoreAddedObserver(added);
    EXPECT_THAT(logged(), ElementsAre("ConfigStoreAddedObserver unregistered"));
    manager.addStore(makeReadOnlyStore("B", 1));
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
}

TEST_F(ConfigStoreManagerTest, StoreAddedObserverIsKeptAliveByItsNotification) {
    auto added = std::make_shared<StoreAddedRecorder>();
    manager.registerConfigStoreAddedObserver(added);
    manager.addStore(makeReadOnlyStore("A", 1));
    const std::weak_ptr<StoreAddedRecorder> watched = added;
    added.reset();
    EXPECT_FALSE(watched.expired());
    factory->backgroundDispatcher->runAll();
    EXPECT_TRUE(watched.expired());
    manager.addStore(makeReadOnlyStore("B", 1));
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
}

TEST_F(ConfigStoreManagerTest, RegistrationOfStoreAddedObserversIsLogged) {
    manager.registerConfigStoreAddedObserver(nullptr);
    EXPECT_THAT(logged(), IsEmpty());
    const auto added = std::make_shared<StoreAddedRecorder>();
    manager.registerConfigStoreAddedObserver(added);
    manager.unregisterConfigStoreAddedObserver(nullptr);
    manager.unregisterConfigStoreAddedObserver(std::make_shared<StoreAddedRecorder>());
    EXPECT_THAT(logged(), ElementsAre("ConfigStoreAddedObserver registered",
                                      "Attempt to unregister null ConfigStoreAddedObserver",
                                      "Attempt to unregister unknown ConfigStoreAddedObserver"));
    EXPECT_THAT(loggedAt(ZelLogLevel::Info), ElementsAre("ConfigStoreAddedObserver registered"));
    EXPECT_EQ(loggedAt(ZelLogLevel::Warning).size(), 2U);
}

TEST_F(ConfigStoreManagerTest, WithoutADispatcherNotificationsAreDropped) {
    ConfigStoreManager lonely(nullptr);
    const auto added = std::make_shared<StoreAddedRecorder>();
    lonely.registerConfigStoreAddedObserver(added);
    lonely.addStore(makeWritableStore("A", 1));
    EXPECT_TRUE(lonely.storeValue(L"k", L"v"));
    EXPECT_THAT(added->names, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, ObserverMayChangeTheChainDuringAnAnnouncement) {
    given(makeReadOnlyStore("Victim", 40, {{L"v", L"1"}}));
    bool reacted = false;
    observer.reaction = [&](const std::wstring&) {
        if (!std::exchange(reacted, true)) {
            manager.removeStoreWithSameName("Victim");
            manager.addStore(makeReadOnlyStore("Nested", 10, {{L"n", L"1"}}));
        }
    };
    manager.addStore(makeReadOnlyStore("R", 33, {{L"k", L"1"}}));
    EXPECT_FALSE(manager.hasStoreWithName("Victim"));
    EXPECT_EQ(valueOf(L"n"), L"1");
    EXPECT_EQ(valueOf(L"k"), L"1");
}

TEST_F(ConfigStoreManagerTest, ObserverMayEmptyTheChainWhileNonLocalStoresAreDropped) {
    for (const auto* name : {"A", "B", "C"}) {
        const auto store = makeReadOnlyStore(name, 33, {{L"k", L"1"}});
        store->local = false;
        given(store);
    }
    observer.reaction = [&](const std::wstring&) {
        observer.reaction = nullptr;
        manager.removeStoreWithSameName("A");
        manager.removeStoreWithSameName("B");
    };
    manager.removeNonLocalStores();
    for (const auto* name : {"A", "B", "C"}) {
        EXPECT_FALSE(manager.hasStoreWithName(name));
    }
}

TEST_F(ConfigStoreManagerTest, AliasTableIsHandedOut) {
    const auto aliases = manager.getKeyAliases();
    EXPECT_EQ(aliases.size(), 18U);
    EXPECT_EQ(aliases.find(L"vvm_mailstore_pollinginterval")->second, L"VoicmeailPollingInterval");
}

TEST_F(ConfigStoreManagerTest, ChangesOfTheChainAreInfoLinesUnderTheirOperations) {
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

TEST_F(ConfigStoreManagerTest, StoreAddedObserversAreToldAfterAllAnnouncements) {
    const auto added = std::make_shared<StoreAddedRecorder>();
    manager.registerConfigStoreAddedObserver(added);
    observer.reaction = [&](const std::wstring&) {
        EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
    };
    manager.addStore(makeReadOnlyStore("R", 33, {{L"k", L"1"}}));
    EXPECT_EQ(observer.announcements.size(), 2U);
    EXPECT_EQ(factory->backgroundDispatcher->getTaskNames().size(), 1U);
}

TEST_F(ConfigStoreManagerTest, StoreAddedObserversAreToldInTheOrderOfTheirRegistration) {
    struct Named final : ConfigStoreAddedObserver {
        Named(std::string ownName, std::vector<std::string>& order) : name(std::move(ownName)), told(order) {}
        void OnConfigStoreAdded(const std::string& storeName) override { told.push_back(name + " " + storeName); }
        const std::string name;
        std::vector<std::string>& told;
    };
    std::vector<std::string> told;
    std::vector<std::shared_ptr<Named>> observers;
    for (const auto* name : {"first", "second", "third"}) {
        observers.push_back(std::make_shared<Named>(name, told));
        manager.registerConfigStoreAddedObserver(observers.back());
    }
    manager.addStore(makeReadOnlyStore("R", 33));
    factory->backgroundDispatcher->runAll();
    EXPECT_THAT(told, ElementsAre("first R", "second R", "third R"));
}

TEST_F(ConfigStoreManagerTest, EveryObserverIsToldOnceAndANullOneIsIgnored) {
    RecordingObserver second;
    manager.addObserver(nullptr);
    manager.addObserver(&second);
    manager.addObserver(&second);
    manager.addStore(makeReadOnlyStore("R", 33, {{L"k", L"1"}}));
    manager.setKeySensitive(L"k");
    EXPECT_THAT(second.announcements, ElementsAre("k: 1 [R] | 1 [R] deferred", "fire k", "sensitive k"));
    EXPECT_EQ(observer.announcements, second.announcements);
}

TEST_F(ConfigStoreManagerTest, SensitiveKeyIsInForceForEveryThreadWhenObserversHear) {
    const testing_host::Watchdog watchdog;
    bool known = false;
    observer.reaction = [&](const std::wstring& key) {
        std::thread([&] { known = manager.isSensitiveKey(key); }).join();
        manager.addStore(makeReadOnlyStore("Nested", 33));
    };
    manager.setKeySensitive(L"Secret");
    EXPECT_TRUE(known);
    EXPECT_TRUE(manager.hasStoreWithName("Nested"));
}

TEST_F(ConfigStoreManagerTest, StoreIsFoundByNameWhileAnotherThreadHoldsTheChain) {
    const testing_host::Watchdog watchdog;
    const auto store = given(makeReadOnlyStore("R", 33));
    std::shared_ptr<ConfigStore> found;
    observer.reaction = [&](const std::wstring&) { std::thread([&] { found = manager.getStoreByName("r"); }).join(); };
    manager.addStore(makeReadOnlyStore("S", 34, {{L"k", L"1"}}));
    EXPECT_EQ(found, store);
}

TEST_F(ConfigStoreManagerTest, UpdateIsAskedOfTheOldStoreAndItsCopyIsNotAnnounced) {
    const auto update = makeReadOnlyStore("R", 33);
    update->caching = true;
    given(makeReadOnlyStore("R", 33));
    given(makeReadOnlyStore("cachedR.dat", 34, {{L"k", L"copy"}}));
    manager.addStore(update);
    EXPECT_TRUE(manager.hasStoreWithName("cachedR.dat"));
    EXPECT_THAT(observer.announcements, IsEmpty());
}

TEST_F(ConfigStoreManagerTest, TheFactoryIsAskedForTheDispatcherOfEachTask) {
    struct CountingFactory final : testing_host::RecordingFactory {
        std::shared_ptr<Processing::TaskDispatcher> getBackgroundDispatcher() override {
            ++questions;
            return backgroundDispatcher;
        }
        int questions = 0;
    };
    const auto counting = std::make_shared<CountingFactory>();
    ConfigStoreManager asking(counting);
    EXPECT_EQ(counting->questions, 0);
    const auto first = std::make_shared<StoreAddedRecorder>();
    const auto second = std::make_shared<StoreAddedRecorder>();
    asking.registerConfigStoreAddedObserver(first);
    asking.registerConfigStoreAddedObserver(second);
    asking.addStore(makeWritableStore("L", 20));
    EXPECT_EQ(counting->questions, 2);
    asking.storeValue(L"k", L"v");
    EXPECT_EQ(counting->questions, 3);
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
