#include "UnifiedFactoryImplFixture.h"

#include <unified/IDataPersistor.h>
#include <unified/SystemService.h>

#include <LogRecorder.h>
#include <Signal.h>
#include <gmock/gmock.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

using namespace unified_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_host::LogRecorder;
using testing_host::Signal;

TEST_F(UnifiedFactoryImplTest, ForwardsToTheFeatureSetOnTheServicesDispatchersThread) {
    fileFeatureSet();
    factory->StartFeatureSet(id, nullptr);
    EXPECT_TRUE(factory->IsFeatureSetStarted(id));
    EXPECT_TRUE(factory->IsFeatureSetProvisioned(id));
    EXPECT_THAT(factory->GetFeatureSetDependencies(id), ElementsAre(7U));
    factory->StopFeatureSet(id, nullptr);
    EXPECT_FALSE(factory->IsFeatureSetStarted(id));
    EXPECT_THAT(journal.get(), ElementsAre("start", "stop"));
}

TEST_F(UnifiedFactoryImplTest, ForwardsImmediatelyOnTheServicesDispatchersThread) {
    fileFeatureSet();
    onServicesThread([&] {
        factory->StartFeatureSet(id, nullptr);
        journal.add(factory->IsFeatureSetStarted(id) ? "started" : "not started");
        factory->StopFeatureSet(id, nullptr);
        journal.add("end of task");
    });
    EXPECT_THAT(journal.get(), ElementsAre("start", "started", "stop", "end of task"));
}

TEST_F(UnifiedFactoryImplTest, CallsForAnUnknownFeatureSetDoNothing) {
    factory->StartFeatureSet(5, nullptr);
    factory->StopFeatureSet(5, nullptr);
    EXPECT_FALSE(factory->IsFeatureSetStarted(5));
    EXPECT_FALSE(factory->IsFeatureSetProvisioned(5));
    EXPECT_THAT(factory->GetFeatureSetDependencies(5), IsEmpty());
    EXPECT_EQ(factory->getFeatureSetAdapter(5), nullptr);
}

TEST_F(UnifiedFactoryImplTest, AnExceptionOfTheFeatureSetReachesTheCaller) {
    fileFeatureSet();
    featureSet->onStart = [] { throw std::bad_weak_ptr(); };
    EXPECT_THROW(factory->StartFeatureSet(id, nullptr), std::bad_weak_ptr);
    bool ran = false;
    onServicesThread([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST_F(UnifiedFactoryImplTest, ASuccessfulStartNotifiesTheServiceOfTheSameNumber) {
    fileFeatureSet();
    fileService();
    factory->StartFeatureSet(id, nullptr);
    EXPECT_THAT(journal.get(), ElementsAre("start", "ready"));
}

TEST_F(UnifiedFactoryImplTest, AFailedOrRepeatedStartDoesNotNotifyTheService) {
    fileFeatureSet();
    fileService();
    featureSet->refusesStart = true;
    factory->StartFeatureSet(id, nullptr);
    EXPECT_THAT(journal.get(), ElementsAre("start"));
    featureSet->refusesStart = false;
    factory->StartFeatureSet(id, nullptr);
    factory->StartFeatureSet(id, nullptr);
    EXPECT_THAT(journal.get(), ElementsAre("start", "start", "ready", "start"));
}

TEST_F(UnifiedFactoryImplTest, FlushesTheBackgroundDispatcherBeforeAndAfterStartStopAndReset) {
    fileFeatureSet();
    const auto background = factory->getBackgroundDispatcher();
    const auto write = [&](const std::string& what) { background->enqueue([this, what] { journal.add(what); }, what); };
    featureSet->onStart = [&] { write("write of start"); };
    const auto systemService = factory->getServiceByType<SystemService>();
    systemService->getResetDataCallbackRegistry()->add(0, std::make_shared<ResetCallback>([&](int) {
                                                           journal.add("reset");
                                                           write("write of reset");
                                                       }));
    write("before start");
    factory->StartFeatureSet(id, nullptr);
    write("before stop");
    factory->StopFeatureSet(id, nullptr);
    write("before reset");
    factory->invokeResetData(ResetDataOptionEnum::ResetAll);
    EXPECT_THAT(journal.get(), ElementsAre("before start", "start", "write of start", "before stop", "stop",
                                           "before reset", "reset", "write of reset"));
}

TEST_F(UnifiedFactoryImplTest, AStartReturnsAfterItsBackgroundTasksHaveRun) {
    fileFeatureSet();
    Signal never;
    featureSet->onStart = [&] {
        factory->getBackgroundDispatcher()->enqueue(
            [&] {
                EXPECT_FALSE(never.waitFor(std::chrono::milliseconds(20))); // simulates a slow disk
                journal.add("written");
            },
            "write");
    };
    factory->StartFeatureSet(id, nullptr);
    journal.add("returned");
    EXPECT_THAT(journal.get(), ElementsAre("start", "written", "returned"));
}

TEST_F(UnifiedFactoryImplTest, ABackgroundTaskMayStartAFeatureSet) {
    fileFeatureSet();
    const auto background = factory->getBackgroundDispatcher();
    background->enqueue([&] { factory->StartFeatureSet(id, nullptr); }, "start");
    background->enqueue([&] { journal.add("queued behind"); }, "behind");
    factory->flushBackgroundDispatcher();
    const auto entries = journal.get();
    EXPECT_EQ(entries.size(), 2U);
    EXPECT_TRUE(featureSet->IsFeatureSetStarted(id));
}

TEST_F(UnifiedFactoryImplTest, ABackgroundTaskMayWaitForAServicesThreadThatWaitsForTheBackground) {
    fileFeatureSet();
    Signal starting;
    factory->getBackgroundDispatcher()->enqueue(
        [&] {
            EXPECT_TRUE(starting.wait());
            onServicesThread([&] { journal.add("let through"); });
        },
        "waiting");
    onServicesThread([&] {
        starting.set();
        factory->StartFeatureSet(id, nullptr);
    });
    EXPECT_THAT(journal.get(), ElementsAre("let through", "start"));
}

TEST_F(UnifiedFactoryImplTest, AServicesTaskForWhichTheBackgroundWaitsMayStartAFeatureSet) {
    fileFeatureSet();
    const auto background = factory->getBackgroundDispatcher();
    background->enqueue([&] { onServicesThread([&] { factory->StartFeatureSet(id, nullptr); }); }, "waiting");
    factory->flushBackgroundDispatcher();
    EXPECT_THAT(journal.get(), ElementsAre("start"));
}

TEST_F(UnifiedFactoryImplTest, ResetCallbacksAreCalledInOrderOnTheServicesThreadWithTheOption) {
    const auto registry = factory->getServiceByType<SystemService>()->getResetDataCallbackRegistry();
    const auto noting = [&](const std::string& name) {
        return std::make_shared<ResetCallback>([this, name](int option) {
            const bool access = factory->getServicesDispatcher()->checkForUpdateAccess();
            journal.add(name + std::to_string(option) + (access ? "" : " on a wrong thread"));
        });
    };
    registry->add(5, noting("last"));
    registry->add(0, noting("first"));
    factory->invokeResetData(ResetDataOptionEnum::ResetOnSignOut);
    EXPECT_THAT(journal.get(), ElementsAre("first2", "last2"));
}

TEST_F(UnifiedFactoryImplTest, AResetCallbackThatThrowsIsLoggedAndTheNextOneCalled) {
    const LogRecorder log;
    const auto registry = factory->getServiceByType<SystemService>()->getResetDataCallbackRegistry();
    registry->add(0, std::make_shared<ResetCallback>([](int) { throw std::runtime_error("broken reset"); }));
    registry->add(1, std::make_shared<ResetCallback>([&](int) { journal.add("next"); }));
    factory->invokeResetData(ResetDataOptionEnum::ResetAll);
    EXPECT_THAT(journal.get(), ElementsAre("next"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre(HasSubstr("broken reset")));
}

TEST_F(UnifiedFactoryImplTest, ASecondInitChangesNothing) {
    const auto service = factory->getServiceByType<SystemService>();
    factory->Init();
    EXPECT_EQ(factory->getServiceByType<SystemService>(), service);
}

TEST_F(UnifiedFactoryImplTest, TasksQueuedBeforeInitRunAfterIt) {
    const auto late = std::make_shared<UnifiedFactoryImpl>();
    Signal ran;
    late->getServicesDispatcher()->enqueue(task([&] { ran.set(); }), false);
    late->Init();
    EXPECT_TRUE(ran.wait());
    late->Destroy();
}

TEST_F(UnifiedFactoryImplTest, ReturnsTheDataPersistorThatWasSet) {
    EXPECT_EQ(factory->getDataPersistor(), nullptr);
    const auto given = std::make_shared<IDataPersistor>();
    factory->setDataPersistor(given);
    EXPECT_EQ(factory->getDataPersistor(), given);
    EXPECT_EQ(factory->getResourceMonitor(), nullptr);
}

TEST(PumpedUnifiedFactory, ForwardsImmediatelyOnTheThreadThatInitialisedIt) {
    Journal journal;
    const auto factory = makeFactory(UnifiedFactoryOptions::ServicesThread::Pumped);
    factory->getFeatureSets().registerItem(
        id, std::shared_ptr<TestFeatureSet>(std::make_shared<RecordingFeatureSet>(factory, journal)));
    factory->StartFeatureSet(id, nullptr);
    factory->Destroy();
    EXPECT_THAT(journal.get(), ElementsAre("start", "stop", "destroy", "gone"));
}

TEST(PumpedUnifiedFactory, AnotherThreadMayDestroyWhileTheOwnerPumps) {
    Journal journal;
    const auto factory = makeFactory(UnifiedFactoryOptions::ServicesThread::Pumped);
    factory->getFeatureSets().registerItem(
        id, std::shared_ptr<TestFeatureSet>(std::make_shared<RecordingFeatureSet>(factory, journal)));
    std::thread ender([&] { factory->Destroy(); });
    while (factory->waitForDispatcherTask(std::chrono::seconds(60))) {
        factory->pumpAllDispatcherTasks();
    }
    ender.join();
    EXPECT_THAT(journal.get(), ElementsAre("destroy", "gone"));
}
