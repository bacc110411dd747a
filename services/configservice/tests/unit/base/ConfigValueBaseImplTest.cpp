#include "TestObjects.h"

#include <unified/UpdateAccessError.h>

#include <LogRecorder.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

using configservice_test::PlainRecord;
using configservice_test::RecordingServiceObserver;
using configservice_test::RecordingValueObserver;
using testing::ElementsAre;
using testing::IsEmpty;

/// Reports when the memory of a shared object is freed, which happens after the last weak pointer to it is removed from
/// every list.
template <class T>
class ReportingAllocator {
public:
    using value_type = T;

    explicit ReportingAllocator(std::shared_ptr<bool> flag) : freed(std::move(flag)) {}
    template <class Other>
    explicit ReportingAllocator(const ReportingAllocator<Other>& other) : freed(other.freed) {}

    T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
    void deallocate(T* memory, std::size_t count) {
        std::allocator<T>().deallocate(memory, count);
        *freed = true;
    }
    bool operator==(const ReportingAllocator& other) const = default;

    std::shared_ptr<bool> freed;
};

/// Records what its addObserver() is called with.
class RegisteringRecord final : public configservice_test::RecordWithoutOperations {
public:
    using RecordWithoutOperations::RecordWithoutOperations;

    void addObserver(std::weak_ptr<ConfigValueObserver> observer) override {
        added.push_back(observer.lock());
        if (whenAdding) {
            whenAdding();
        }
        ConfigValueBaseImpl::addObserver(std::move(observer));
    }

    std::vector<std::shared_ptr<ConfigValueObserver>> added;
    std::function<void()> whenAdding;
};

struct ConfigValueBaseImplTest : testing::Test {
    std::shared_ptr<RecordingValueObserver> observe() {
        auto observer = std::make_shared<RecordingValueObserver>();
        record->addObserver(observer);
        return observer;
    }

    std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<PlainRecord> record = std::make_shared<PlainRecord>(factory, L"ServicesDomain");
};

TEST_F(ConfigValueBaseImplTest, IsUndefinedAndHasOnlyItsKeyAtFirst) {
    EXPECT_EQ(record->getKey(), L"ServicesDomain");
    EXPECT_EQ(record->getValue(), L"");
    EXPECT_EQ(record->getOriginalValue(), L"");
    EXPECT_FALSE(record->getisOverridden());
    EXPECT_FALSE(record->getisDefined());
    EXPECT_EQ(record->getValueStoreName(), L"");
    EXPECT_EQ(record->getOriginalValueStoreName(), L"");
}

TEST_F(ConfigValueBaseImplTest, ASetterAssignsItsPropertyAndFiresNothing) {
    const auto observer = observe();
    record->setKey(L"k");
    record->setValue(L"v");
    record->setOriginalValue(L"ov");
    record->setisOverridden(true);
    record->setisDefined(true);
    record->setValueStoreName(L"vs");
    record->setOriginalValueStoreName(L"ovs");
    EXPECT_EQ(record->getKey(), L"k");
    EXPECT_EQ(record->getValue(), L"v");
    EXPECT_EQ(record->getOriginalValue(), L"ov");
    EXPECT_TRUE(record->getisOverridden());
    EXPECT_TRUE(record->getisDefined());
    EXPECT_EQ(record->getValueStoreName(), L"vs");
    EXPECT_EQ(record->getOriginalValueStoreName(), L"ovs");
    EXPECT_THAT(observer->received, IsEmpty());
}

TEST_F(ConfigValueBaseImplTest, DefinedAndOverriddenDoNotFollowFromEachOther) {
    record->setisOverridden(true);
    EXPECT_FALSE(record->getisDefined());
    record->setisDefined(true);
    record->setisOverridden(false);
    EXPECT_TRUE(record->getisDefined());
}

TEST_F(ConfigValueBaseImplTest, EachFiringCallsTheOperationOfItsProperty) {
    const auto observer = observe();
    record->fireKey();
    record->fireValue();
    record->fireOriginalValue();
    record->fireisOverridden();
    record->fireisDefined();
    record->fireValueStoreName();
    record->fireOriginalValueStoreName();
    EXPECT_THAT(observer->received, ElementsAre("Key", "Value", "OriginalValue", "isOverridden", "isDefined",
                                                "ValueStoreName", "OriginalValueStoreName"));
}

TEST_F(ConfigValueBaseImplTest, TheNotifierSetIsCreatedOnceAndFiresOnceForEachFiring) {
    const auto notifiers = record->getConfigValueNotifiers();
    ASSERT_TRUE(notifiers);
    EXPECT_EQ(record->getConfigValueNotifiers(), notifiers);
    EXPECT_EQ(record->getUnifiedBusinessObjectNotifiers(), notifiers);
    int fired = 0;
    notifiers->getValueNotifier()->connect([&] { ++fired; });
    record->fireValue();
    EXPECT_EQ(fired, 1);
}

TEST_F(ConfigValueBaseImplTest, TheNotifierSetIsRegisteredOnceWithTheRecordsAddObserver) {
    RegisteringRecord registering(factory, L"k");
    const auto notifiers = registering.getConfigValueNotifiers();
    EXPECT_EQ(registering.getConfigValueNotifiers(), notifiers);
    ASSERT_EQ(registering.added.size(), 1U);
    EXPECT_EQ(std::dynamic_pointer_cast<ConfigValueNotifiers>(registering.added.front()), notifiers);
}

TEST_F(ConfigValueBaseImplTest, TheNotifierSetIsAvailableDuringItsRegistration) {
    RegisteringRecord registering(factory, L"k");
    std::shared_ptr<ConfigValueNotifiers> seen;
    registering.whenAdding = [&] { seen = registering.getConfigValueNotifiers(); };
    const auto notifiers = registering.getConfigValueNotifiers();
    ASSERT_TRUE(notifiers);
    EXPECT_EQ(seen, notifiers);
    EXPECT_EQ(registering.added.size(), 1U);
}

TEST_F(ConfigValueBaseImplTest, AfterAFailedRegistrationTheNextRequestCreatesTheNotifierSet) {
    RegisteringRecord registering(factory, L"k");
    registering.whenAdding = [] { throw std::runtime_error("refused"); };
    EXPECT_THROW(registering.getConfigValueNotifiers(), std::runtime_error);
    registering.whenAdding = nullptr;
    int fired = 0;
    registering.getConfigValueNotifiers()->getValueNotifier()->connect([&] { ++fired; });
    registering.fireValue();
    EXPECT_EQ(fired, 1);
}

TEST_F(ConfigValueBaseImplTest, TheNotifierSetHoldsNoReferenceToItsRecord) {
    const auto notifiers = record->getConfigValueNotifiers();
    const std::weak_ptr<PlainRecord> watched = record;
    record.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(ConfigValueBaseImplTest, AnObserverAddedTwiceIsCalledOnceAndARemovedOneIsNotCalled) {
    const auto observer = observe();
    record->addObserver(observer);
    record->fireValue();
    EXPECT_THAT(observer->received, ElementsAre("Value"));
    record->removeObserver(observer);
    record->fireValue();
    EXPECT_THAT(observer->received, ElementsAre("Value"));
}

TEST_F(ConfigValueBaseImplTest, AnObserverOfAnotherTypeIsSkippedAndStaysRegistered) {
    const auto forgotten = std::make_shared<bool>(false);
    auto other =
        std::allocate_shared<RecordingServiceObserver>(ReportingAllocator<RecordingServiceObserver>(forgotten));
    const auto observer = std::make_shared<RecordingValueObserver>();
    const std::shared_ptr<UnifiedBusinessObject> object = record;
    object->addObserver(std::weak_ptr<UnifiedBusinessObjectObserver>(other));
    record->addObserver(observer);
    record->fireValue();
    record->fireValue();
    EXPECT_THAT(observer->received, ElementsAre("Value", "Value"));
    EXPECT_EQ(other->readyChanges + other->bulkUpdateChanges, 0);
    other.reset();
    EXPECT_FALSE(*forgotten);
}

TEST_F(ConfigValueBaseImplTest, AFiringReleasesDestroyedObservers) {
    const auto forgotten = std::make_shared<bool>(false);
    auto dead = std::allocate_shared<RecordingValueObserver>(ReportingAllocator<RecordingValueObserver>(forgotten));
    record->addObserver(dead);
    dead.reset();
    EXPECT_FALSE(*forgotten);
    record->fireOriginalValue();
    EXPECT_TRUE(*forgotten);
}

TEST_F(ConfigValueBaseImplTest, AFiringReplacesADestroyedObserverByTheLastOne) {
    std::vector<std::string> order;
    auto dead = observe();
    std::vector<std::shared_ptr<RecordingValueObserver>> alive;
    for (const std::string name : {"B", "C"}) {
        alive.push_back(observe());
        alive.back()->reaction = [&order, name](const std::string&) { order.push_back(name); };
    }
    dead.reset();
    record->fireValue();
    EXPECT_THAT(order, ElementsAre("C", "B"));
    record->fireValue();
    EXPECT_THAT(order, ElementsAre("C", "B", "C", "B"));
}

TEST_F(ConfigValueBaseImplTest, ACallbackMayAddAndRemoveObserversOnTheSameRecord) {
    const auto first = observe();
    const auto removed = observe();
    const auto added = std::make_shared<RecordingValueObserver>();
    first->reaction = [&](const std::string&) {
        record->addObserver(added);
        record->removeObserver(removed);
        record->removeObserver(first);
    };
    record->fireValue();
    EXPECT_THAT(removed->received, ElementsAre("Value")) << "the firing calls the observers it started with";
    EXPECT_THAT(added->received, IsEmpty());
    record->fireValue();
    EXPECT_THAT(first->received, ElementsAre("Value"));
    EXPECT_THAT(removed->received, ElementsAre("Value"));
    EXPECT_THAT(added->received, ElementsAre("Value"));
}

TEST_F(ConfigValueBaseImplTest, AnObserverReleasedDuringAFiringIsStillCalled) {
    const auto first = observe();
    auto second = observe();
    const std::weak_ptr<RecordingValueObserver> watched = second;
    std::vector<std::string> order;
    second->reaction = [&](const std::string&) { order.emplace_back("second"); };
    first->reaction = [&](const std::string&) { second.reset(); };
    record->fireValue();
    EXPECT_THAT(order, ElementsAre("second"));
    EXPECT_TRUE(watched.expired());
}

TEST_F(ConfigValueBaseImplTest, AnExceptionOfAnObserverStopsTheFiringAndPropagates) {
    const auto first = observe();
    const auto second = observe();
    first->reaction = [](const std::string&) { throw std::runtime_error("refused"); };
    EXPECT_THROW(record->fireValue(), std::runtime_error);
    EXPECT_THAT(second->received, IsEmpty());
}

using Operation = std::pair<std::string, std::function<void(PlainRecord&)>>;

std::vector<Operation> guardedOperations() {
    return {
        {"getKey", [](PlainRecord& record) { record.getKey(); }},
        {"getValue", [](PlainRecord& record) { record.getValue(); }},
        {"getOriginalValue", [](PlainRecord& record) { record.getOriginalValue(); }},
        {"getisOverridden", [](PlainRecord& record) { record.getisOverridden(); }},
        {"getisDefined", [](PlainRecord& record) { record.getisDefined(); }},
        {"getValueStoreName", [](PlainRecord& record) { record.getValueStoreName(); }},
        {"getOriginalValueStoreName", [](PlainRecord& record) { record.getOriginalValueStoreName(); }},
        {"setKey", [](PlainRecord& record) { record.setKey(L"x"); }},
        {"setValue", [](PlainRecord& record) { record.setValue(L"x"); }},
        {"setOriginalValue", [](PlainRecord& record) { record.setOriginalValue(L"x"); }},
        {"setisOverridden", [](PlainRecord& record) { record.setisOverridden(true); }},
        {"setisDefined", [](PlainRecord& record) { record.setisDefined(true); }},
        {"setValueStoreName", [](PlainRecord& record) { record.setValueStoreName(L"x"); }},
        {"setOriginalValueStoreName", [](PlainRecord& record) { record.setOriginalValueStoreName(L"x"); }},
        {"fireKey", [](PlainRecord& record) { record.fireKey(); }},
        {"fireValue", [](PlainRecord& record) { record.fireValue(); }},
        {"fireOriginalValue", [](PlainRecord& record) { record.fireOriginalValue(); }},
        {"fireisOverridden", [](PlainRecord& record) { record.fireisOverridden(); }},
        {"fireisDefined", [](PlainRecord& record) { record.fireisDefined(); }},
        {"fireValueStoreName", [](PlainRecord& record) { record.fireValueStoreName(); }},
        {"fireOriginalValueStoreName", [](PlainRecord& record) { record.fireOriginalValueStoreName(); }},
    };
}

TEST_F(ConfigValueBaseImplTest, CallsOnAnotherThreadThrowLogAnErrorAndChangeNothing) {
    const auto observer = observe();
    record->setValue(L"a value never logged");
    testing_host::LogRecorder log;
    for (const auto& [name, operation] : guardedOperations()) {
        SCOPED_TRACE(name);
        log.clear();
        std::thread([&, call = operation] { EXPECT_THROW(call(*record), UpdateAccessError); }).join();
        const auto errors = log.getTexts(ZelLogLevel::Error);
        ASSERT_EQ(errors.size(), 1U);
        EXPECT_THAT(errors[0], testing::StartsWith(name + " of ConfigValueBaseImpl {" + record->getGuid() + "}"));
        EXPECT_FALSE(log.mentions("a value never logged"));
    }
    EXPECT_EQ(record->getKey(), L"ServicesDomain");
    EXPECT_EQ(record->getValue(), L"a value never logged");
    EXPECT_EQ(record->getOriginalValue() + record->getValueStoreName() + record->getOriginalValueStoreName(), L"");
    EXPECT_FALSE(record->getisOverridden() || record->getisDefined());
    EXPECT_THAT(observer->received, IsEmpty());
}

TEST_F(ConfigValueBaseImplTest, ObserversNotifiersGuidAndNameAreAccessibleOnEveryThread) {
    factory->servicesDispatcher->disown();
    const auto observer = observe();
    EXPECT_TRUE(record->getConfigValueNotifiers());
    EXPECT_EQ(record->toString(), "ConfigValueBaseImpl {" + record->getGuid() + "}");
    EXPECT_EQ(record->getInterfaceName(), "ConfigValue");
    EXPECT_EQ(observer->getInterfaceName(), "ConfigValueObserver");
    record->removeObserver(observer);
}

} // namespace
} // namespace ZelUnified
