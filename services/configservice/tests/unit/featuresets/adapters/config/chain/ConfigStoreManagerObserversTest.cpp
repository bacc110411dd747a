#include "ConfigStoreManagerFixture.h"

#include <ConfigStoreAddedObserver.h>
#include <Watchdog.h>

#include <thread>
#include <utility>

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

/// Tests which observers are notified, when, and what a callback may do.
class ConfigStoreManagerObservers : public ConfigStoreManagerFixture {};

TEST_F(ConfigStoreManagerObservers, ANewStoreIsReportedToStoreAddedObserversOnTheBackgroundDispatcher) {
    const auto added = std::make_shared<StoreAddedRecorder>();
    manager.registerConfigStoreAddedObserver(added);
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_THAT(added->names, IsEmpty());
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(),
                ElementsAre("ConfigStoreAddedObserver::OnConfigStoreAdded"));
    factory->backgroundDispatcher->runAll();
    EXPECT_THAT(added->names, ElementsAre("R"));
}

TEST_F(ConfigStoreManagerObservers, AddingAStoreWithoutKeysAnnouncesNothing) {
    const auto added = std::make_shared<StoreAddedRecorder>();
    manager.registerConfigStoreAddedObserver(added);
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_EQ(factory->backgroundDispatcher->getTaskNames().size(), 1U);
}

TEST_F(ConfigStoreManagerObservers, ASensitiveKeyIsAnnouncedEachTimeAndFoundIgnoringCase) {
    manager.setKeySensitive(L"Secret");
    manager.setKeySensitive(L"Secret");
    EXPECT_THAT(observer.announcements, ElementsAre("sensitive Secret", "sensitive Secret"));
    EXPECT_TRUE(manager.isSensitiveKey(L"SECRET"));
    EXPECT_FALSE(manager.isSensitiveKey(L"Secre"));
}

TEST_F(ConfigStoreManagerObservers, AllOfManySensitiveKeysAreFoundIgnoringCase) {
    for (int added = 0; added < 200; ++added) {
        manager.setKeySensitive(L"Secret" + std::to_wstring(added));
        for (int known = 0; known <= added; ++known) {
            ASSERT_TRUE(manager.isSensitiveKey(L"SECRET" + std::to_wstring(known))) << known << " after " << added;
        }
        ASSERT_FALSE(manager.isSensitiveKey(L"Secret" + std::to_wstring(added + 1)));
    }
}

TEST_F(ConfigStoreManagerObservers, UnregisteringAStoreAddedObserverRemovesAllItsRegistrations) {
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

TEST_F(ConfigStoreManagerObservers, APendingNotificationKeepsItsStoreAddedObserverAlive) {
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

TEST_F(ConfigStoreManagerObservers, RegistrationOfStoreAddedObserversIsLogged) {
    manager.registerConfigStoreAddedObserver(nullptr);
    EXPECT_THAT(log.getRecords(), IsEmpty());
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

TEST_F(ConfigStoreManagerObservers, WithoutADispatcherNotificationsAreDropped) {
    ConfigStoreManager lonely(nullptr);
    const auto added = std::make_shared<StoreAddedRecorder>();
    lonely.registerConfigStoreAddedObserver(added);
    lonely.addStore(makeWritableStore("A", 1));
    EXPECT_TRUE(lonely.storeValue(L"k", L"v"));
    EXPECT_THAT(added->names, IsEmpty());
}

TEST_F(ConfigStoreManagerObservers, AnObserverMayChangeTheChainDuringAnAnnouncement) {
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

TEST_F(ConfigStoreManagerObservers, AnObserverMayEmptyTheChainWhileStoresThatAreNotLocalAreRemoved) {
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

TEST_F(ConfigStoreManagerObservers, StoreAddedObserversAreCalledAfterAllAnnouncements) {
    const auto added = std::make_shared<StoreAddedRecorder>();
    manager.registerConfigStoreAddedObserver(added);
    observer.reaction = [&](const std::wstring&) {
        EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
    };
    manager.addStore(makeReadOnlyStore("R", 33, {{L"k", L"1"}}));
    EXPECT_EQ(observer.announcements.size(), 2U);
    EXPECT_EQ(factory->backgroundDispatcher->getTaskNames().size(), 1U);
}

TEST_F(ConfigStoreManagerObservers, StoreAddedObserversAreCalledInTheOrderOfTheirRegistration) {
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

TEST_F(ConfigStoreManagerObservers, EveryObserverIsCalledOnceAndNullIsIgnored) {
    RecordingObserver second;
    manager.addObserver(nullptr);
    EXPECT_THAT(log.getRecords(), IsEmpty());
    manager.addObserver(&second);
    manager.addObserver(&second);
    manager.addStore(makeReadOnlyStore("R", 33, {{L"k", L"1"}}));
    manager.setKeySensitive(L"k");
    EXPECT_THAT(second.announcements, ElementsAre("k: 1 [R] | 1 [R] deferred", "fire k", "sensitive k"));
    EXPECT_EQ(observer.announcements, second.announcements);
}

TEST_F(ConfigStoreManagerObservers, AKeyIsSensitiveForEveryThreadWhenObserversAreCalled) {
    const testing_host::Watchdog watchdog;
    bool known = false;
    observer.reaction = [&](const std::wstring& key) {
        std::thread([&] { known = manager.isSensitiveKey(key); }).join();
    };
    manager.setKeySensitive(L"Secret");
    EXPECT_TRUE(known);
}

TEST_F(ConfigStoreManagerObservers, AStoreIsFoundByNameWhileAnotherThreadHoldsTheChainLock) {
    const testing_host::Watchdog watchdog;
    const auto store = given(makeReadOnlyStore("R", 33));
    std::shared_ptr<ConfigStore> found;
    observer.reaction = [&](const std::wstring&) { std::thread([&] { found = manager.getStoreByName("r"); }).join(); };
    manager.addStore(makeReadOnlyStore("S", 34, {{L"k", L"1"}}));
    EXPECT_EQ(found, store);
}

TEST_F(ConfigStoreManagerObservers, TheDispatcherIsRequestedFromTheFactoryForEachTask) {
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

TEST_F(ConfigStoreManagerObservers, ASensitiveKeyIsFoundWhileAnotherThreadHoldsTheChainLock) {
    const testing_host::Watchdog watchdog;
    manager.setKeySensitive(L"Secret");
    bool known = false;
    observer.reaction = [&](const std::wstring&) {
        std::thread([&] { known = manager.isSensitiveKey(L"secret"); }).join();
    };
    manager.addStore(makeReadOnlyStore("S", 34, {{L"k", L"1"}}));
    EXPECT_TRUE(known);
}

} // namespace ZelUnified
