#include "UnifiedFactoryImplFixture.h"

#include <unified/SystemService.h>

#include <LogRecorder.h>
#include <Signal.h>
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace unified_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing_host::LogRecorder;
using testing_host::Signal;

TEST_F(UnifiedFactoryImplTest, DestroyStopsThenDestroysAndReleasesAStartedFeatureSet) {
    fileFeatureSet();
    fileService();
    factory->StartFeatureSet(id, nullptr);
    featureSet.reset();
    factory->Destroy();
    EXPECT_THAT(journal.get(), ElementsAre("start", "ready", "stop", "destroy", "gone"));
    EXPECT_EQ(factory->getFeatureSets().getItem(id), nullptr);
    EXPECT_EQ(factory->getServices().getItem(id), nullptr);
    EXPECT_EQ(factory->getServiceByType<SystemService>(), nullptr);
}

TEST_F(UnifiedFactoryImplTest, DestroyDoesNotStopAFeatureSetThatIsNotStarted) {
    fileFeatureSet();
    factory->Destroy();
    EXPECT_THAT(journal.get(), ElementsAre("destroy"));
}

TEST_F(UnifiedFactoryImplTest, ASecondDestroyDoesNothing) {
    fileFeatureSet();
    factory->Destroy();
    factory->Destroy();
    EXPECT_THAT(journal.get(), ElementsAre("destroy"));
}

TEST_F(UnifiedFactoryImplTest, DestroyRunsTheQueuedTasksOfBothDispatchers) {
    fileFeatureSet();
    const auto background = factory->getBackgroundDispatcher();
    const auto services = factory->getServicesDispatcher();
    featureSet->onDestroy = [&] { background->enqueue([&] { journal.add("last write"); }, "write"); };
    background->enqueue(
        [&] {
            services->enqueue(task([&] { background->enqueue([&] { journal.add("posted by a task"); }, "write"); }),
                              false);
        },
        "relay");
    factory->Destroy();
    EXPECT_THAT(journal.get(), ElementsAre("posted by a task", "destroy", "last write"));
}

TEST_F(UnifiedFactoryImplTest, DestroyContinuesAfterAFeatureSetThatThrows) {
    const LogRecorder log;
    fileFeatureSet();
    const auto second = std::make_shared<RecordingFeatureSet>(factory, journal);
    factory->getFeatureSets().registerItem(id + 1, std::shared_ptr<TestFeatureSet>(second));
    featureSet->onDestroy = [] { throw std::runtime_error("broken end"); };
    factory->Destroy();
    EXPECT_THAT(journal.get(), ElementsAre("destroy", "destroy"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre(HasSubstr("broken end")));
}

TEST_F(UnifiedFactoryImplTest, ATaskOfTheServicesDispatcherMayDestroy) {
    fileFeatureSet();
    factory->StartFeatureSet(id, nullptr);
    onServicesThread([&] {
        factory->getServicesDispatcher()->enqueue(task([&] { journal.add("queued"); }), false);
        factory->Destroy();
        journal.add("end of task");
    });
    EXPECT_THAT(journal.get(), ElementsAre("start", "stop", "queued", "destroy", "end of task"));
}

TEST_F(UnifiedFactoryImplTest, ATaskOfTheBackgroundDispatcherMayDestroy) {
    fileFeatureSet();
    factory->StartFeatureSet(id, nullptr);
    Signal destroyed;
    factory->getBackgroundDispatcher()->enqueue(
        [&] {
            factory->Destroy();
            destroyed.set();
        },
        "destroy");
    ASSERT_TRUE(destroyed.wait());
    EXPECT_THAT(journal.get(), ElementsAre("start", "stop", "destroy"));
}

TEST_F(UnifiedFactoryImplTest, AServicesTaskForWhichTheBackgroundWaitsMayDestroy) {
    fileFeatureSet();
    Signal released;
    factory->getBackgroundDispatcher()->enqueue(
        [&] {
            onServicesThread([&] { factory->Destroy(); });
            released.set();
        },
        "waiting");
    ASSERT_TRUE(released.wait());
    EXPECT_THAT(journal.get(), ElementsAre("destroy"));
}

TEST_F(UnifiedFactoryImplTest, ManyThreadsMayDestroy) {
    fileFeatureSet();
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] { factory->Destroy(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(journal.get(), ElementsAre("destroy"));
}

TEST_F(UnifiedFactoryImplTest, DestroyReleasesTheResetCallbacks) {
    const auto registry = factory->getServiceByType<SystemService>()->getResetDataCallbackRegistry();
    auto callback = std::make_shared<ResetCallback>([](int) {});
    const std::weak_ptr<ResetCallback> watched = callback;
    registry->add(0, std::move(callback));
    factory->Destroy();
    EXPECT_TRUE(watched.expired());
}

TEST_F(UnifiedFactoryImplTest, ADestroyedFeatureSetIsNeitherStartedNorReset) {
    fileFeatureSet();
    const auto registry = factory->getServiceByType<SystemService>()->getResetDataCallbackRegistry();
    registry->add(0, std::make_shared<ResetCallback>([this](int) { journal.add("reset"); }));
    featureSet->onDestroy = [this] {
        factory->StartFeatureSet(id, nullptr);
        factory->invokeResetData(ResetDataOptionEnum::ResetAll);
    };
    factory->Destroy();
    EXPECT_THAT(journal.get(), ElementsAre("destroy"));
}

TEST_F(UnifiedFactoryImplTest, TheDispatchersRemainUsableAfterDestroy) {
    const LogRecorder log;
    factory->Destroy();
    const auto services = factory->getServicesDispatcher();
    const auto background = factory->getBackgroundDispatcher();
    bool ran = false;
    bool dropped = true;
    services->enqueueBlock(task([&] { ran = true; }), false);
    services->enqueue(task([&] { dropped = false; }), false);
    background->enqueue([&] { dropped = false; }, "late write");
    factory->flushBackgroundDispatcher();
    EXPECT_TRUE(ran);
    EXPECT_TRUE(dropped);
    EXPECT_FALSE(services->checkForUpdateAccess());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), ElementsAre(HasSubstr("test"), HasSubstr("late write")));
}

TEST_F(UnifiedFactoryImplTest, AFactoryThatWasNeverInitialisedCanBeDestroyed) {
    const auto unused = std::make_shared<UnifiedFactoryImpl>();
    bool ran = false;
    unused->getServicesDispatcher()->enqueueBlock(task([&] { ran = true; }), false);
    EXPECT_TRUE(ran);
    unused->Destroy();
    unused->Init();
    EXPECT_EQ(unused->getServiceByType<SystemService>(), nullptr);
}
