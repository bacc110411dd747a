#include "ConfigStoreManagerFixture.h"
#include "StoreAddedRecorder.h"

#include <Watchdog.h>

#include <thread>
#include <utility>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST_F(ConfigStoreManagerObservers, WithoutADispatcherNotificationsAreDropped) {
    ConfigStoreManager managerWithoutFactory(nullptr);
    const auto added = std::make_shared<StoreAddedRecorder>();
    managerWithoutFactory.registerConfigStoreAddedObserver(added);
    managerWithoutFactory.addStore(makeWritableStore("A", 1));
    EXPECT_TRUE(managerWithoutFactory.storeValue(L"k", L"v"));
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
            ++requests;
            return backgroundDispatcher;
        }
        int requests = 0;
    };
    const auto counting = std::make_shared<CountingFactory>();
    ConfigStoreManager managerOfCounting(counting);
    EXPECT_EQ(counting->requests, 0);
    const auto first = std::make_shared<StoreAddedRecorder>();
    const auto second = std::make_shared<StoreAddedRecorder>();
    managerOfCounting.registerConfigStoreAddedObserver(first);
    managerOfCounting.registerConfigStoreAddedObserver(second);
    managerOfCounting.addStore(makeWritableStore("L", 20));
    EXPECT_EQ(counting->requests, 2);
    managerOfCounting.storeValue(L"k", L"v");
    EXPECT_EQ(counting->requests, 3);
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
