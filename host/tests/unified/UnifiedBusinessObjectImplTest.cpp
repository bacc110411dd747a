#include <unified/UnifiedBusinessObjectImpl.h>
#include <unified/UpdateAccessError.h>

#include <HeldServicesDispatcher.h>
#include <LogRecorder.h>
#include <RecordingFactory.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace ZelUnified;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_host::LogRecorder;
using testing_host::RecordingFactory;

namespace business_object_test {

class CountingObserver : public virtual UnifiedBusinessObjectObserver {
public:
    void OnGuidChanged() override {
        ++calls;
        if (whenCalled) {
            whenCalled();
        }
    }
    int calls = 0;
    std::function<void()> whenCalled;
};

class SpecialObserver : public virtual UnifiedBusinessObjectObserver {
public:
    virtual void onSpecial() = 0;
};

class SpecialCounter final : public SpecialObserver {
public:
    explicit SpecialCounter(std::function<void()> function = {}) : work(std::move(function)) {}
    void onSpecial() override {
        ++calls;
        if (work) {
            work();
        }
    }
    int calls = 0;

private:
    std::function<void()> work;
};

class Notifiers final : public UnifiedBusinessObjectNotifiers, public CountingObserver {
public:
    std::shared_ptr<PropertyNotifier> getGuidNotifier() override { return nullptr; }
};

class TestObject final : public UnifiedBusinessObjectImpl {
public:
    explicit TestObject(const std::shared_ptr<UnifiedFactory>& factory)
        : UnifiedBusinessObjectImpl(factory, "TestObject") {}
    TestObject(const std::shared_ptr<UnifiedFactory>& factory, bool enforce)
        : UnifiedBusinessObjectImpl(factory, enforce, "TestObject") {}

    void setSomething() {
        EnsureUpdateAccess(true);
        changed = true;
    }
    void warnAboutSomething() {
        EnsureUpdateAccess(false);
        changed = true;
    }
    void fireGuid() { fire<UnifiedBusinessObjectObserver>(&UnifiedBusinessObjectObserver::OnGuidChanged); }
    void fireSpecial() { fire<SpecialObserver>(&SpecialObserver::onSpecial); }
    void commit() { commitToServicesDispatcher(); }
    bool changed = false;

private:
    void initNotifiers() override {
        initNotifiersOnce<Notifiers>(
            [this](std::weak_ptr<UnifiedBusinessObjectObserver> set) { addObserver(std::move(set)); });
    }
};

/// In its destructor, calls an operation that acquires the object's lock.
class LeavingObserver final : public UnifiedBusinessObjectObserver {
public:
    explicit LeavingObserver(TestObject& watched) : object(watched) {}
    ~LeavingObserver() override { object.getGuid(); }

private:
    TestObject& object;
};

} // namespace business_object_test

using namespace business_object_test;

namespace {

/// Matches a pattern: "x" any digit, "v" a digit of the variant, every other character itself.
bool isVersion4Uuid(const std::string& text) {
    const std::string form = "xxxxxxxx-xxxx-4xxx-vxxx-xxxxxxxxxxxx";
    return std::equal(text.begin(), text.end(), form.begin(), form.end(), [](char found, char wanted) {
        const std::string allowed = wanted == 'x'   ? "0123456789abcdef"
                                    : wanted == 'v' ? "89ab"
                                                    : std::string(1, wanted);
        return allowed.find(found) != std::string::npos;
    });
}

class UnifiedBusinessObjectImplTest : public testing::Test {
protected:
    std::shared_ptr<RecordingFactory> factory = std::make_shared<RecordingFactory>();
    TestObject object{factory};
};

} // namespace

TEST_F(UnifiedBusinessObjectImplTest, TheGuidIsAConstantRandomVersion4UuidInLowerCase) {
    std::set<std::string> guids;
    for (int i = 0; i < 100; ++i) {
        TestObject each(factory);
        EXPECT_TRUE(isVersion4Uuid(each.getGuid())) << each.getGuid();
        EXPECT_EQ(each.getGuid(), each.getGuid());
        guids.insert(each.getGuid());
    }
    EXPECT_EQ(guids.size(), 100U);
}

TEST_F(UnifiedBusinessObjectImplTest, ToStringIsClassNameAndGuid) {
    EXPECT_EQ(object.toString(), "TestObject {" + object.getGuid() + "}");
}

TEST_F(UnifiedBusinessObjectImplTest, AnObserverIsAddedOnce) {
    const auto observer = std::make_shared<CountingObserver>();
    object.addObserver(observer);
    object.addObserver(observer);
    object.fireGuid();
    EXPECT_EQ(observer->calls, 1);
}

TEST_F(UnifiedBusinessObjectImplTest, ARemovedObserverIsNotCalled) {
    const auto kept = std::make_shared<CountingObserver>();
    const auto removed = std::make_shared<CountingObserver>();
    object.addObserver(removed);
    object.addObserver(kept);
    object.removeObserver(removed);
    object.fireGuid();
    EXPECT_EQ(removed->calls, 0);
    EXPECT_EQ(kept->calls, 1);
}

TEST_F(UnifiedBusinessObjectImplTest, EmptyAndUnknownObserversAreIgnored) {
    object.addObserver(std::weak_ptr<UnifiedBusinessObjectObserver>());
    object.removeObserver(std::weak_ptr<UnifiedBusinessObjectObserver>());
    const auto kept = std::make_shared<CountingObserver>();
    object.addObserver(kept);
    object.removeObserver(std::make_shared<CountingObserver>());
    object.fireGuid();
    EXPECT_EQ(kept->calls, 1);
}

TEST_F(UnifiedBusinessObjectImplTest, FiringReplacesADestroyedObserverByTheLastOne) {
    std::vector<std::string> order;
    const auto named = [&](const std::string& name) {
        return std::make_shared<SpecialCounter>([&order, name] { order.push_back(name); });
    };
    auto a = named("a");
    const auto b = named("b");
    const auto c = named("c");
    object.addObserver(a);
    object.addObserver(b);
    object.addObserver(c);
    a.reset();
    object.fireSpecial();
    EXPECT_THAT(order, ElementsAre("c", "b"));
}

TEST_F(UnifiedBusinessObjectImplTest, AnObserverOfAnotherTypeIsSkippedAndStaysRegistered) {
    const auto plain = std::make_shared<CountingObserver>();
    const auto special = std::make_shared<SpecialCounter>();
    object.addObserver(plain);
    object.addObserver(special);
    object.fireSpecial();
    EXPECT_EQ(special->calls, 1);
    EXPECT_EQ(plain->calls, 0);
    object.fireGuid();
    EXPECT_EQ(plain->calls, 1);
}

TEST_F(UnifiedBusinessObjectImplTest, AnObserverMayAddAndRemoveWhileItIsCalled) {
    const auto first = std::make_shared<CountingObserver>();
    const auto removed = std::make_shared<CountingObserver>();
    const auto added = std::make_shared<CountingObserver>();
    first->whenCalled = [&] {
        object.removeObserver(removed);
        object.addObserver(added);
    };
    object.addObserver(first);
    object.addObserver(removed);
    object.fireGuid();
    EXPECT_EQ(removed->calls, 1); // it was in the list when the pass began
    EXPECT_EQ(added->calls, 0);
    object.fireGuid();
    EXPECT_EQ(removed->calls, 1);
    EXPECT_EQ(added->calls, 1);
}

TEST_F(UnifiedBusinessObjectImplTest, AnExceptionOfAnObserverStopsTheFiringAndPropagates) {
    const auto throwing = std::make_shared<CountingObserver>();
    const auto next = std::make_shared<CountingObserver>();
    throwing->whenCalled = [] { throw std::runtime_error("broken"); };
    object.addObserver(throwing);
    object.addObserver(next);
    EXPECT_THROW(object.fireGuid(), std::runtime_error);
    EXPECT_EQ(next->calls, 0);
}

TEST_F(UnifiedBusinessObjectImplTest, ObserversMayBeDestroyedOnOtherThreadsDuringAFiring) {
    std::thread dying([this] {
        for (int i = 0; i < 500; ++i) {
            object.addObserver(std::make_shared<LeavingObserver>(object));
            const auto observer = std::make_shared<LeavingObserver>(object);
            object.addObserver(observer);
        }
    });
    for (int i = 0; i < 500; ++i) {
        object.fireGuid();
        object.fireSpecial();
    }
    dying.join();
    const auto kept = std::make_shared<CountingObserver>();
    object.addObserver(kept);
    object.fireGuid();
    EXPECT_EQ(kept->calls, 1);
}

TEST_F(UnifiedBusinessObjectImplTest, TheNotifierSetIsCreatedOnceAndRegisteredAsObserver) {
    const auto notifiers = object.getUnifiedBusinessObjectNotifiers();
    ASSERT_NE(notifiers, nullptr);
    EXPECT_EQ(object.getUnifiedBusinessObjectNotifiers(), notifiers);
    object.fireGuid();
    EXPECT_EQ(std::dynamic_pointer_cast<Notifiers>(notifiers)->calls, 1);
}

TEST_F(UnifiedBusinessObjectImplTest, ACallOnTheWrongThreadThrowsLogsAndChangesNothing) {
    const LogRecorder log;
    factory->servicesDispatcher->disown();
    EXPECT_THROW(object.setSomething(), UpdateAccessError);
    EXPECT_FALSE(object.changed);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre(AllOf(HasSubstr("setSomething"), HasSubstr("TestObject {" + object.getGuid() + "}"))));
}

TEST_F(UnifiedBusinessObjectImplTest, ACallOnTheDispatchersThreadSucceeds) {
    object.setSomething();
    EXPECT_TRUE(object.changed);
}

TEST_F(UnifiedBusinessObjectImplTest, WithoutEnforcementACallOnTheWrongThreadIsOnlyLogged) {
    const LogRecorder log;
    factory->servicesDispatcher->disown();
    EXPECT_NO_THROW(object.warnAboutSomething());
    EXPECT_TRUE(object.changed);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre(HasSubstr("warnAboutSomething")));
}

TEST_F(UnifiedBusinessObjectImplTest, AnUncommittedObjectAcceptsCallsOnAnyThreadUntilItsCommit) {
    const LogRecorder log;
    TestObject free(factory, false);
    factory->servicesDispatcher->disown();
    EXPECT_NO_THROW(free.setSomething());
    EXPECT_THAT(log.getRecords(), IsEmpty());
    free.commit();
    EXPECT_THROW(free.setSomething(), UpdateAccessError);
}

TEST_F(UnifiedBusinessObjectImplTest, WithoutADispatcherACheckedOperationThrowsOnEveryThread) {
    TestObject withoutFactory(nullptr);
    EXPECT_THROW(withoutFactory.setSomething(), UpdateAccessError);
}

TEST_F(UnifiedBusinessObjectImplTest, OperationsWithoutAThreadCheckSucceedOnAnyThread) {
    factory->servicesDispatcher->disown();
    const auto observer = std::make_shared<CountingObserver>();
    object.addObserver(observer);
    object.removeObserver(observer);
    EXPECT_FALSE(object.getGuid().empty());
    EXPECT_FALSE(object.toString().empty());
    EXPECT_NE(object.getUnifiedBusinessObjectNotifiers(), nullptr);
}
