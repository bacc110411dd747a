#include "featuresets/adapters/config/chain/BackgroundTasks.h"

#include <RecordingFactory.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace ZelUnified {

TEST(BackgroundTasks, PostsTheTaskUnderItsName) {
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    int runs = 0;
    enqueueBackgroundTask(factory, "Store::persist", [&] { ++runs; });
    EXPECT_EQ(runs, 0);
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), testing::ElementsAre("Store::persist"));
    factory->backgroundDispatcher->runAll();
    EXPECT_EQ(runs, 1);
}

TEST(BackgroundTasks, RequestsTheDispatcherForEachTask) {
    struct CountingFactory final : testing_host::RecordingFactory {
        std::shared_ptr<Processing::TaskDispatcher> getBackgroundDispatcher() override {
            ++requests;
            return backgroundDispatcher;
        }
        int requests = 0;
    };
    const auto factory = std::make_shared<CountingFactory>();
    enqueueBackgroundTask(factory, "first", [] {});
    enqueueBackgroundTask(factory, "second", [] {});
    EXPECT_EQ(factory->requests, 2);
    factory->backgroundDispatcher->clear();
}

TEST(BackgroundTasks, AnExceptionOfTheDispatcherReachesTheCaller) {
    struct FullDispatcher final : Processing::TaskDispatcher {
        void enqueue(std::shared_ptr<zel::Task>) override { throw std::runtime_error("full"); }
        void enqueue(std::function<void()>, const std::string&) override { throw std::runtime_error("full"); }
    };
    struct FullFactory final : testing_host::RecordingFactory {
        std::shared_ptr<Processing::TaskDispatcher> getBackgroundDispatcher() override {
            return std::make_shared<FullDispatcher>();
        }
    };
    EXPECT_THROW(enqueueBackgroundTask(std::make_shared<FullFactory>(), "task", [] {}), std::runtime_error);
}

TEST(BackgroundTasks, WithoutAFactoryOrADispatcherDestroysTheTask) {
    struct EndedFactory final : testing_host::RecordingFactory {
        std::shared_ptr<Processing::TaskDispatcher> getBackgroundDispatcher() override { return nullptr; }
    };
    for (const auto& factory : {std::shared_ptr<UnifiedFactory>(), std::shared_ptr<UnifiedFactory>(new EndedFactory)}) {
        const auto captured = std::make_shared<int>(0);
        enqueueBackgroundTask(factory, "task", [captured] { ++*captured; });
        EXPECT_EQ(*captured, 0);
        EXPECT_EQ(captured.use_count(), 1);
    }
}

} // namespace ZelUnified
