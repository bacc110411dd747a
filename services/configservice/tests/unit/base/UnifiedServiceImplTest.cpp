#include "TestObjects.h"

#include <unified/UpdateAccessError.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

using configservice_test::PlainService;

class BulkUpdateObserver final : public UnifiedServiceObserver {
public:
    void OnBulkUpdateInProgressChanged() override { ++changes; }
    int changes = 0;
};

/// Records what its addObserver() is called with.
class RegisteringService final : public UnifiedServiceImpl {
public:
    explicit RegisteringService(const std::shared_ptr<UnifiedFactory>& factory)
        : UnifiedServiceImpl(factory, "RegisteringService") {}

    void addObserver(std::weak_ptr<UnifiedServiceObserver> observer) override {
        added.push_back(observer.lock());
        UnifiedServiceImpl::addObserver(std::move(observer));
    }

    std::vector<std::shared_ptr<UnifiedServiceObserver>> added;
};

struct UnifiedServiceImplTest : testing::Test {
    std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<PlainService> service = std::make_shared<PlainService>(factory);
};

TEST_F(UnifiedServiceImplTest, IsNotInABulkUpdateAtFirst) {
    EXPECT_FALSE(service->getBulkUpdateInProgress());
}

TEST_F(UnifiedServiceImplTest, SettingTheBulkUpdateFiresNothing) {
    const auto observer = std::make_shared<BulkUpdateObserver>();
    service->addObserver(observer);
    service->setBulkUpdateInProgress(true);
    EXPECT_TRUE(service->getBulkUpdateInProgress());
    EXPECT_EQ(observer->changes, 0);
    service->fireOnBulkUpdateInProgressChanged();
    EXPECT_EQ(observer->changes, 1);
}

TEST_F(UnifiedServiceImplTest, ARemovedObserverIsNotCalled) {
    const auto observer = std::make_shared<BulkUpdateObserver>();
    service->addObserver(observer);
    service->removeObserver(observer);
    service->fireOnBulkUpdateInProgressChanged();
    EXPECT_EQ(observer->changes, 0);
}

TEST_F(UnifiedServiceImplTest, BothGettersReturnTheSameNotifierSet) {
    const auto notifiers = service->getUnifiedServiceNotifiers();
    ASSERT_TRUE(notifiers);
    EXPECT_EQ(service->getUnifiedServiceNotifiers(), notifiers);
    EXPECT_EQ(service->getUnifiedBusinessObjectNotifiers(), notifiers);
    int fired = 0;
    notifiers->getBulkUpdateInProgressNotifier()->connect([&] { ++fired; });
    service->fireOnBulkUpdateInProgressChanged();
    EXPECT_EQ(fired, 1) << "a second request must not register the set again";
}

TEST_F(UnifiedServiceImplTest, TheNotifierSetIsRegisteredOnceWithTheServicesAddObserver) {
    RegisteringService registering(factory);
    const auto notifiers = registering.getUnifiedServiceNotifiers();
    EXPECT_EQ(registering.getUnifiedServiceNotifiers(), notifiers);
    ASSERT_EQ(registering.added.size(), 1U);
    EXPECT_EQ(std::dynamic_pointer_cast<UnifiedServiceNotifiers>(registering.added.front()), notifiers);
}

TEST_F(UnifiedServiceImplTest, GetClassNameReturnsTheBaseAndToStringTheDerivedClass) {
    EXPECT_EQ(service->getClassName(), "UnifiedServiceImpl");
    EXPECT_TRUE(service->toString().starts_with("PlainService {"));
}

TEST_F(UnifiedServiceImplTest, OnlyTheFlagIsAccessibleOnAnotherThread) {
    const auto observer = std::make_shared<BulkUpdateObserver>();
    service->addObserver(observer);
    factory->servicesDispatcher->disown();
    EXPECT_FALSE(service->getBulkUpdateInProgress());
    EXPECT_THROW(service->setBulkUpdateInProgress(true), UpdateAccessError);
    EXPECT_THROW(service->fireOnBulkUpdateInProgressChanged(), UpdateAccessError);
    EXPECT_FALSE(service->getBulkUpdateInProgress());
    EXPECT_EQ(observer->changes, 0);
}

TEST_F(UnifiedServiceImplTest, AnUncommittedObjectAcceptsCallsOnAnyThreadUntilItsCommit) {
    PlainService free(factory, false);
    factory->servicesDispatcher->disown();
    EXPECT_NO_THROW(free.setBulkUpdateInProgress(true));
    free.commitToServicesDispatcher();
    EXPECT_THROW(free.setBulkUpdateInProgress(false), UpdateAccessError);
    EXPECT_TRUE(free.getBulkUpdateInProgress());
}

} // namespace
} // namespace ZelUnified
