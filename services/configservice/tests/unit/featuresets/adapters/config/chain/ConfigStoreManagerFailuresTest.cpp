#include "ConfigStoreManagerFixture.h"
#include "FailingConfigStore.h"

#include <ConfigStoreAddedObserver.h>
#include <TemporaryProfile.h>
#include <Watchdog.h>

#include <functional>
#include <ostream>
#include <thread>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ObserverFailure final : public std::runtime_error {
public:
    ObserverFailure() : std::runtime_error("observer") {}
};

/// The name of a store that removeAllCachedStores() removes because the cache folder contains a file of that name.
const std::string storeOfCopy = "cachedF.xml";
/// The name of a store that a reset keeps.
const std::string restName = "BootstrapConfigStore";
const std::wstring provisioningUrl = L"app://x?ServicesDomain=example.com";

/// An exception during an operation reaches the caller and leaves the manager usable by every thread.
class ConfigStoreManagerFailures : public ConfigStoreManagerFixture {
protected:
    /// Builds a chain of a writable store and, after it, a read-only one with a key of the first.
    std::shared_ptr<FailingConfigStore> givenChain(const std::string& name = "F") {
        auto store = makeFailing(name);
        given(makeReadOnlyStore(restName, 700, {{L"k", L"rest"}}));
        given(store);
        return store;
    }
    static std::shared_ptr<FailingConfigStore> makeFailing(const std::string& name) {
        auto store = std::make_shared<FailingConfigStore>(name, 20, ConfigMap{{L"k", L"v"}, {L"own", L"o"}});
        store->store.readOnly = false;
        store->store.local = false;
        return store;
    }

    /// If a lock is still held, the watchdog fails the test.
    void expectUsableByAnotherThread() {
        std::thread([this] {
            EXPECT_TRUE(manager.hasStoreWithName(restName));
            manager.setKeySensitive(L"later");
            EXPECT_TRUE(manager.isSensitiveKey(L"later"));
            manager.registerConfigStoreAddedObserver(nullptr);
            manager.addStore(makeReadOnlyStore("Later", 0, {{L"k", L"later"}}));
            EXPECT_EQ(valueOf(L"k"), L"later");
            EXPECT_TRUE(manager.removeStoreWithSameName("Later"));
        }).join();
    }

    const testing_host::Watchdog watchdog;
    const testing_host::TemporaryProfile profile;
};

struct StoreCase {
    const char* name;
    /// The operation of the store that throws.
    const char* failing;
    std::function<void(ConfigStoreManager&, const std::shared_ptr<FailingConfigStore>&)> call;
    /// The expected value of "k" afterwards: "v" if the store is still in the chain, otherwise "rest".
    const wchar_t* valueAfterwards = L"v";
    const char* storeName = "F";
};

std::ostream& operator<<(std::ostream& stream, const StoreCase& storeCase) {
    return stream << storeCase.name;
}

class StoreThatThrows : public ConfigStoreManagerFailures, public testing::WithParamInterface<StoreCase> {};

TEST_P(StoreThatThrows, FailsTheOperationAndLeavesTheManagerUsable) {
    const auto& [name, failing, call, valueAfterwards, storeName] = GetParam();
    testing_host::writeFile(profile.config() / "Cache" / storeOfCopy, "x");
    const auto store = givenChain(storeName);
    *store->failing = failing;
    EXPECT_THROW(call(manager, store), StoreFailure);
    store->failing->clear();
    EXPECT_EQ(valueOf(L"k"), valueAfterwards);
    expectUsableByAnotherThread();
    EXPECT_NO_THROW(call(manager, store)) << "once the store works again";
}

using Store = std::shared_ptr<FailingConfigStore>;

/// Adds a second version of the store, which throws in the same operation as the first.
void update(ConfigStoreManager& manager, const Store& store) {
    const auto next = std::make_shared<FailingConfigStore>("F", 20, ConfigMap{{L"k", L"next"}});
    next->failing = store->failing;
    manager.addStore(next);
}

void lookUp(ConfigStoreManager& manager, bool skipLocal, const std::string& filter) {
    std::wstring value;
    std::wstring storeName;
    bool fromLegacyKey = false;
    manager.getValue(L"k", value, storeName, fromLegacyKey, skipLocal, filter);
}

const StoreCase storeCases[] = {
    {"addStoreName", "getName", [](auto& manager, const Store& store) { manager.addStore(store); }},
    {"updateKeysOfOldVersion", "getKeys",
     [](auto& manager, const Store&) {
         manager.addStore(makeReadOnlyStore("F", 20, {{L"k", L"v"}}));
     }},
    {"updateCachingOfOldVersion", "shouldCacheConfigStore",
     [](auto& manager, const Store&) {
         manager.addStore(makeReadOnlyStore("F", 20, {{L"k", L"v"}}));
     }},
    {"updatePriorityOfNewVersion", "getPriority", update, L"rest"},
    {"updateValueOfNewVersion", "getValue", update, L"next"},
    {"updateExisting", "getKeys",
     [](auto& manager, const Store& store) { manager.updateExistingConfigStore(store, {L"k"}); }, L"rest"},
    {"arrivalOfAnother", "getPriority",
     [](auto& manager, const Store&) {
         manager.addStore(makeReadOnlyStore("Other", 30, {{L"k", L"other"}}));
     }},
    {"arrivalOfAnotherValue", "getValue",
     [](auto& manager, const Store&) {
         manager.addStore(makeReadOnlyStore("Other", 30, {{L"k", L"other"}}));
     }},
    {"removeCaching", "shouldCacheConfigStore",
     [](auto& manager, const Store&) { manager.removeStoreWithSameName("F"); }},
    {"removeKeys", "getKeys", [](auto& manager, const Store&) { manager.removeStoreWithSameName("F"); }, L"rest"},
    {"removeNonLocal", "isLocal", [](auto& manager, const Store&) { manager.removeNonLocalStores(); }},
    {"removeNonLocalKeys", "getKeys", [](auto& manager, const Store&) { manager.removeNonLocalStores(); }, L"rest"},
    {"destroy", "destroy", [](auto& manager, const Store&) { manager.destroyStores(); }},
    {"hasStore", "getName", [](auto& manager, const Store&) { manager.hasStoreWithName(restName); }},
    {"getStore", "getName", [](auto& manager, const Store&) { manager.getStoreByName(restName); }},
    {"getValue", "getValue", [](auto& manager, const Store&) { lookUp(manager, false, ""); }},
    {"getValueSkipLocal", "isReadOnly", [](auto& manager, const Store&) { lookUp(manager, true, ""); }},
    {"getValueFilter", "getName", [](auto& manager, const Store&) { lookUp(manager, false, "F"); }},
    {"getValueOfStore", "getValue", [](auto& manager, const Store&) { manager.getValue("F", L"k"); }},
    {"getOriginalValue", "isReadOnly",
     [](auto& manager, const Store&) {
         std::wstring value;
         std::wstring storeName;
         bool fromLegacyKey = false;
         manager.getOriginalValue(L"k", value, storeName, fromLegacyKey);
     }},
    {"storeValue", "storeValue", [](auto& manager, const Store&) { manager.storeValue(L"k", L"v"); }},
    {"storeValueTarget", "isReadOnly", [](auto& manager, const Store&) { manager.storeValue(L"k", L"v"); }},
    {"storeValueReading", "getValue", [](auto& manager, const Store&) { manager.storeValue(L"k", L"w"); }, L"w"},
    {"storeMap", "storeValue",
     [](auto& manager, const Store&) {
         manager.storeValue(ConfigMap{{L"k", L"v"}});
     }},
    {"setInMemoryValue", "storeValue", [](auto& manager, const Store&) { manager.setInMemoryValue(L"k", L"v"); }, L"v",
     "InMemoryConfigStore"},
    {"removeValue", "removeValue", [](auto& manager, const Store&) { manager.removeValue(L"k"); }},
    {"provisioning", "storeValue",
     [](auto& manager, const Store&) { manager.setUrlProvisioningData(provisioningUrl); }},
    {"resetAll", "removeAllValues", [](auto& manager, const Store&) { manager.resetConfigData(); }, L"rest"},
    {"resetAllKeys", "getKeys", [](auto& manager, const Store&) { manager.resetConfigData(); }, L"rest"},
    {"resetOne", "removeAllValues", [](auto& manager, const Store&) { manager.resetConfigData("F"); }},
    {"removeCachedStores", "getKeys", [](auto& manager, const Store&) { manager.removeAllCachedStores(); }, L"rest",
     storeOfCopy.c_str()},
    {"report", "getKeys",
     [](auto& manager, const Store&) {
         std::wstring report;
         manager.getConfigForPRT(report);
     }},
};

INSTANTIATE_TEST_SUITE_P(Operations, StoreThatThrows, testing::ValuesIn(storeCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

struct ObserverCase {
    const char* name;
    std::function<void(ConfigStoreManager&, const std::shared_ptr<FailingConfigStore>&)> call;
    const wchar_t* valueAfterwards = L"v";
    const char* storeName = "F";
};

std::ostream& operator<<(std::ostream& stream, const ObserverCase& observerCase) {
    return stream << observerCase.name;
}

class ObserverThatThrows : public ConfigStoreManagerFailures, public testing::WithParamInterface<ObserverCase> {};

TEST_P(ObserverThatThrows, FailsTheOperationAndLeavesTheManagerUsable) {
    const auto& [name, call, valueAfterwards, storeName] = GetParam();
    testing_host::writeFile(profile.config() / "Cache" / storeOfCopy, "x");
    const auto store = givenChain(storeName);
    observer.reaction = [](const std::wstring&) { throw ObserverFailure(); };
    EXPECT_THROW(call(manager, store), ObserverFailure);
    EXPECT_EQ(observer.announcements.size(), 1U);
    observer.reaction = nullptr;
    EXPECT_EQ(valueOf(L"k"), valueAfterwards);
    expectUsableByAnotherThread();
    EXPECT_NO_THROW(call(manager, store)) << "once the observer works again";
}

const ObserverCase observerCases[] = {
    {"addStore",
     [](auto& manager, const Store&) {
         manager.addStore(makeReadOnlyStore("Other", 1, {{L"k", L"other"}}));
     },
     L"other"},
    {"update",
     [](auto& manager, const Store&) {
         manager.addStore(makeReadOnlyStore("F", 20, {{L"k", L"next"}}));
     },
     L"rest"},
    {"updateExisting",
     [](auto& manager, const Store&) {
         manager.updateExistingConfigStore(makeReadOnlyStore("F", 20, {{L"k", L"next"}}), {L"k"});
     },
     L"next"},
    {"removeStore", [](auto& manager, const Store&) { manager.removeStoreWithSameName("F"); }, L"rest"},
    {"removeNonLocal", [](auto& manager, const Store&) { manager.removeNonLocalStores(); }, L"rest"},
    {"setKeySensitive", [](auto& manager, const Store&) { manager.setKeySensitive(L"k"); }},
    {"storeValue", [](auto& manager, const Store&) { manager.storeValue(L"k", L"w"); }, L"w"},
    {"storeMap",
     [](auto& manager, const Store&) {
         manager.storeValue(ConfigMap{{L"a", L"1"}, {L"k", L"w"}});
     },
     L"w"},
    {"setInMemoryValue", [](auto& manager, const Store&) { manager.setInMemoryValue(L"k", L"w"); }, L"w",
     "InMemoryConfigStore"},
    {"removeValue", [](auto& manager, const Store&) { manager.removeValue(L"k"); }, L"rest"},
    {"provisioning", [](auto& manager, const Store&) { manager.setUrlProvisioningData(provisioningUrl); }},
    {"resetAll", [](auto& manager, const Store&) { manager.resetConfigData(); }, L"rest"},
    {"removeCachedStores", [](auto& manager, const Store&) { manager.removeAllCachedStores(); }, L"rest",
     storeOfCopy.c_str()},
};

INSTANTIATE_TEST_SUITE_P(Operations, ObserverThatThrows, testing::ValuesIn(observerCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace

TEST_F(ConfigStoreManagerFailures, AStoreWhosePriorityThrowsIsNotAdded) {
    given(makeReadOnlyStore(restName, 700, {{L"k", L"rest"}}));
    const auto store = makeFailing("F");
    *store->failing = "getPriority";
    EXPECT_THROW(manager.addStore(store), StoreFailure);
    EXPECT_FALSE(manager.hasStoreWithName("F"));
    EXPECT_THAT(observer.announcements, IsEmpty());
    store->failing->clear();
    manager.addStore(store);
    EXPECT_EQ(valueOf(L"k"), L"v");
}

TEST_F(ConfigStoreManagerFailures, AStoreWhoseKeysThrowIsAddedWithoutAnAnnouncement) {
    const auto store = makeFailing("F");
    *store->failing = "getKeys";
    EXPECT_THROW(manager.addStore(store), StoreFailure);
    EXPECT_EQ(valueOf(L"k"), L"v");
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
}

TEST_F(ConfigStoreManagerFailures, AnObserverThatThrowsStopsTheAnnouncementOfANewStore) {
    struct Added final : ConfigStoreAddedObserver {
        void OnConfigStoreAdded(const std::string&) override {}
    };
    const auto added = std::make_shared<Added>();
    manager.registerConfigStoreAddedObserver(added);
    observer.reaction = [](const std::wstring& key) {
        if (key == L"b") {
            throw ObserverFailure();
        }
    };
    EXPECT_THROW(manager.addStore(makeReadOnlyStore("R", 33, {{L"a", L"1"}, {L"b", L"2"}, {L"c", L"3"}})),
                 ObserverFailure);
    EXPECT_THAT(observer.announcements, ElementsAre("a: 1 [R] | 1 [R] deferred", "b: 2 [R] | 2 [R] deferred"));
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
    EXPECT_TRUE(manager.hasStoreWithName("R"));
}

TEST_F(ConfigStoreManagerFailures, AnObserverThatThrowsAtAFiringLeavesTheLaterOnesUnfired) {
    observer.reaction = [this](const std::wstring&) {
        if (observer.announcements.back() == "fire a") {
            throw ObserverFailure();
        }
    };
    EXPECT_THROW(manager.addStore(makeReadOnlyStore("R", 33, {{L"a", L"1"}, {L"b", L"2"}})), ObserverFailure);
    EXPECT_THAT(observer.announcements,
                ElementsAre("a: 1 [R] | 1 [R] deferred", "b: 2 [R] | 2 [R] deferred", "fire a"));
    EXPECT_EQ(valueOf(L"b"), L"2");
}

TEST_F(ConfigStoreManagerFailures, AWriteIsPostedForPersistingEvenIfAnObserverThrows) {
    const auto store = givenChain();
    observer.reaction = [](const std::wstring&) { throw ObserverFailure(); };
    EXPECT_THROW(manager.storeValue(L"k", L"w"), ObserverFailure);
    EXPECT_THROW(manager.storeValue(ConfigMap{{L"a", L"1"}, {L"b", L"2"}}), ObserverFailure);
    EXPECT_THROW(manager.removeValue(L"own"), ObserverFailure);
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(),
                ElementsAre("ConfigStore::persistValues", "ConfigStore::persistValues", "ConfigStore::persistValues"));
    EXPECT_EQ(store->store.values, (ConfigMap{{L"a", L"1"}, {L"b", L"2"}, {L"k", L"w"}}));
}

TEST_F(ConfigStoreManagerFailures, AWriteForWhichTheStoreThrowsIsNeitherPersistedNorAnnounced) {
    *givenChain()->failing = "storeValue";
    EXPECT_THROW(manager.storeValue(L"k", L"w"), StoreFailure);
    EXPECT_THROW(manager.storeValue(ConfigMap{{L"k", L"w"}}), StoreFailure);
    EXPECT_THAT(observer.announcements, IsEmpty());
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
}

TEST_F(ConfigStoreManagerFailures, AStoreThatThrowsInPersistValuesFailsOnlyItsTask) {
    const auto store = givenChain();
    manager.storeValue(L"k", L"w");
    manager.storeValue(L"k", L"x");
    *store->failing = "persistValues";
    EXPECT_THROW(factory->backgroundDispatcher->runAll(), StoreFailure);
    store->failing->clear();
    factory->backgroundDispatcher->runAll();
    EXPECT_EQ(store->store.timesPersisted, 1);
}

TEST_F(ConfigStoreManagerFailures, StoresBehindOneThatThrowsInDestroyAreNotDestroyed) {
    const auto first = given(makeReadOnlyStore("First", 10));
    const auto last = given(makeReadOnlyStore("Last", 600));
    *givenChain()->failing = "destroy";
    EXPECT_THROW(manager.destroyStores(), StoreFailure);
    EXPECT_EQ(first->timesDestroyed, 1);
    EXPECT_EQ(last->timesDestroyed, 0);
}

TEST_F(ConfigStoreManagerFailures, AKeyBecomesSensitiveEvenIfAnObserverThrows) {
    observer.reaction = [](const std::wstring&) { throw ObserverFailure(); };
    EXPECT_THROW(manager.setKeySensitive(L"Secret"), ObserverFailure);
    EXPECT_TRUE(manager.isSensitiveKey(L"secret"));
}

TEST_F(ConfigStoreManagerFailures, AResetStoreIsNotEmptiedIfAnObserverThrows) {
    const auto store = givenChain();
    observer.reaction = [](const std::wstring&) { throw ObserverFailure(); };
    EXPECT_THROW(manager.resetConfigData(), ObserverFailure);
    EXPECT_FALSE(store->store.values.empty());
}

TEST_F(ConfigStoreManagerFailures, AStoreAddedObserverThatThrowsFailsOnlyItsTask) {
    struct Added final : ConfigStoreAddedObserver {
        void OnConfigStoreAdded(const std::string&) override {
            ++calls;
            if (throws) {
                throw ObserverFailure();
            }
        }
        int calls = 0;
        bool throws = false;
    };
    const auto failing = std::make_shared<Added>();
    const auto other = std::make_shared<Added>();
    failing->throws = true;
    manager.registerConfigStoreAddedObserver(failing);
    manager.registerConfigStoreAddedObserver(other);
    manager.addStore(makeReadOnlyStore("R", 33));
    EXPECT_THROW(factory->backgroundDispatcher->runAll(), ObserverFailure);
    factory->backgroundDispatcher->runAll();
    EXPECT_EQ(failing->calls, 1);
    EXPECT_EQ(other->calls, 1);
}

TEST_F(ConfigStoreManagerFailures, AnObserverThatThrowsPreventsTheCallsOfLaterObservers) {
    RecordingObserver second;
    manager.addObserver(&second);
    int failures = 0;
    // The order of the two is that of their addresses.
    for (auto* const each : {&observer, &second}) {
        each->reaction = [&](const std::wstring&) {
            ++failures;
            throw ObserverFailure();
        };
    }
    EXPECT_THROW(manager.addStore(makeReadOnlyStore("R", 33, {{L"k", L"1"}})), ObserverFailure);
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(observer.announcements.size() + second.announcements.size(), 1U);
}

} // namespace ZelUnified
