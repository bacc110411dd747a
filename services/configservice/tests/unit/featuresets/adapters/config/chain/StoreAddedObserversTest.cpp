#include "featuresets/adapters/config/chain/StoreAddedObservers.h"

#include "ConfigStoreManagerFixture.h"
#include "StoreAddedRecorder.h"

#include <utility>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

class StoreAddedObserversTest : public ConfigStoreManagerFixture {
protected:
    StoreAddedObservers addedObservers{factory};
};

TEST_F(StoreAddedObserversTest, UnregisteringRemovesAllRegistrationsOfAnObserver) {
    const auto added = std::make_shared<StoreAddedRecorder>();
    addedObservers.registerConfigStoreAddedObserver(added);
    addedObservers.registerConfigStoreAddedObserver(added);
    addedObservers.fireConfigStoreAdded("A");
    factory->backgroundDispatcher->runAll();
    EXPECT_THAT(added->names, ElementsAre("A", "A"));
    log.clear();
    addedObservers.unregisterConfigStoreAddedObserver(added);
    EXPECT_THAT(logged(), ElementsAre("ConfigStoreAddedObserver unregistered"));
    addedObservers.fireConfigStoreAdded("B");
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
}

TEST_F(StoreAddedObserversTest, APendingNotificationKeepsItsObserverAlive) {
    auto added = std::make_shared<StoreAddedRecorder>();
    addedObservers.registerConfigStoreAddedObserver(added);
    addedObservers.fireConfigStoreAdded("A");
    const std::weak_ptr<StoreAddedRecorder> watched = added;
    added.reset();
    EXPECT_FALSE(watched.expired());
    factory->backgroundDispatcher->runAll();
    EXPECT_TRUE(watched.expired());
    addedObservers.fireConfigStoreAdded("B");
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), IsEmpty());
}

TEST_F(StoreAddedObserversTest, RegistrationsAreLogged) {
    addedObservers.registerConfigStoreAddedObserver(nullptr);
    EXPECT_THAT(log.getRecords(), IsEmpty());
    const auto added = std::make_shared<StoreAddedRecorder>();
    addedObservers.registerConfigStoreAddedObserver(added);
    addedObservers.unregisterConfigStoreAddedObserver(nullptr);
    addedObservers.unregisterConfigStoreAddedObserver(std::make_shared<StoreAddedRecorder>());
    EXPECT_THAT(logged(), ElementsAre("ConfigStoreAddedObserver registered",
                                      "Attempt to unregister null ConfigStoreAddedObserver",
                                      "Attempt to unregister unknown ConfigStoreAddedObserver"));
    EXPECT_THAT(loggedAt(ZelLogLevel::Info), ElementsAre("ConfigStoreAddedObserver registered"));
    EXPECT_EQ(loggedAt(ZelLogLevel::Warning).size(), 2U);
}

TEST_F(StoreAddedObserversTest, ObserversAreCalledInTheOrderOfTheirRegistration) {
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
        addedObservers.registerConfigStoreAddedObserver(observers.back());
    }
    addedObservers.fireConfigStoreAdded("R");
    factory->backgroundDispatcher->runAll();
    EXPECT_THAT(told, ElementsAre("first R", "second R", "third R"));
}

TEST_F(StoreAddedObserversTest, WithoutADispatcherNoObserverIsCalled) {
    StoreAddedObservers withoutFactory(nullptr);
    const auto added = std::make_shared<StoreAddedRecorder>();
    withoutFactory.registerConfigStoreAddedObserver(added);
    withoutFactory.fireConfigStoreAdded("A");
    EXPECT_THAT(added->names, IsEmpty());
}

} // namespace ZelUnified
