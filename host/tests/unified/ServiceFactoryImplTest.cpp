#include "Task.h"

#include <unified/ServiceFactoryImpl.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>

using namespace ZelUnified;
using unified_test::task;

namespace {

class CountingCallback final : public ServicesDispatcherCallback {
public:
    void onDispatcherTaskPosted() override { ++calls; }
    int calls = 0;
};

class ServiceFactoryImplTest : public testing::Test {
protected:
    ServiceFactoryImplTest() { unifiedFactory->Init(); }
    ~ServiceFactoryImplTest() override { unifiedFactory->Destroy(); }

    static UnifiedFactoryOptions pumped() {
        UnifiedFactoryOptions options;
        options.servicesThread = UnifiedFactoryOptions::ServicesThread::Pumped;
        return options;
    }
    void post(std::function<void()> work) {
        unifiedFactory->getServicesDispatcher()->enqueue(task(std::move(work)), false);
    }

    std::shared_ptr<UnifiedFactoryImpl> unifiedFactory = std::make_shared<UnifiedFactoryImpl>(pumped());
    ServiceFactoryImpl factory{unifiedFactory};
};

} // namespace

TEST_F(ServiceFactoryImplTest, FindsServicesByNumber) {
    const auto found = factory.getService(UnifiedFactoryImpl::systemServiceId);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->getInterfaceName(), "SystemService");
    EXPECT_EQ(factory.getService(77), nullptr);
}

TEST_F(ServiceFactoryImplTest, PumpsOneTaskOrAllTasks) {
    int runs = 0;
    for (int i = 0; i < 3; ++i) {
        post([&] { ++runs; });
    }
    EXPECT_EQ(runs, 0);
    EXPECT_TRUE(factory.pumpNextDispatcherTask());
    EXPECT_EQ(runs, 1);
    factory.pumpAllDispatcherTasks();
    EXPECT_EQ(runs, 3);
    EXPECT_FALSE(factory.pumpNextDispatcherTask());
}

TEST_F(ServiceFactoryImplTest, WaitsForATask) {
    EXPECT_FALSE(factory.waitForDispatcherTask(std::chrono::milliseconds(1)));
    std::thread poster([&] { post([] {}); });
    EXPECT_TRUE(factory.waitForDispatcherTask(std::chrono::seconds(60)));
    poster.join();
}

TEST_F(ServiceFactoryImplTest, CallsTheCallbackForEachPostedTaskUntilItIsReset) {
    const auto callback = std::make_shared<CountingCallback>();
    factory.setDispatcherCallback(callback);
    post([] {});
    post([] {});
    EXPECT_EQ(callback->calls, 2);
    factory.setDispatcherCallback(nullptr);
    post([] {});
    EXPECT_EQ(callback->calls, 2);
    EXPECT_EQ(callback.use_count(), 1);
}

TEST_F(ServiceFactoryImplTest, AnotherThreadMayTakeOverTheDispatcher) {
    std::thread([&] {
        factory.resetDispatcherThread();
        EXPECT_TRUE(unifiedFactory->getServicesDispatcher()->checkForUpdateAccess());
    }).join();
    EXPECT_FALSE(unifiedFactory->getServicesDispatcher()->checkForUpdateAccess());
    factory.resetDispatcherThread();
    EXPECT_TRUE(unifiedFactory->getServicesDispatcher()->checkForUpdateAccess());
}

TEST_F(ServiceFactoryImplTest, AfterAResetNoServiceIsFound) {
    factory.reset();
    EXPECT_EQ(factory.getService(UnifiedFactoryImpl::systemServiceId), nullptr);
}
