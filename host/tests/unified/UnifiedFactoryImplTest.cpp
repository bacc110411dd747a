#include <kyr/FunctionTask.h>
#include <unified/FeatureSetReadyListener.h>
#include <unified/IDataPersistor.h>
#include <unified/SystemService.h>
#include <unified/UnifiedBusinessObjectImpl.h>
#include <unified/UnifiedFactoryImpl.h>

#include <LogRecorder.h>
#include <Signal.h>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
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
using testing_host::Signal;

namespace {

constexpr unsigned int id = 1300;

std::shared_ptr<zel::Task> task(std::function<void()> work) {
    return std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), "test");
}

/// What happened, in order. Any thread.
class Journal {
public:
    void add(std::string entry) {
        const std::lock_guard lock(mutex);
        entries.push_back(std::move(entry));
    }
    std::vector<std::string> get() const {
        const std::lock_guard lock(mutex);
        return entries;
    }

private:
    mutable std::mutex mutex;
    std::vector<std::string> entries;
};

class TestFeatureSet : public FeatureSet {};

/// Writes down what it is told. Holds the factory, as a real feature set does.
class RecordingFeatureSet final : public TestFeatureSet, public FeatureSetAdapter {
public:
    RecordingFeatureSet(std::shared_ptr<UnifiedFactory> owner, Journal& target)
        : factory(std::move(owner)), journal(target) {}
    ~RecordingFeatureSet() override { journal.add("gone"); }

    void StartFeatureSet(unsigned int, std::shared_ptr<ServiceEventList>) override {
        note("start");
        if (onStart) {
            onStart();
        }
        started = !refusesStart;
    }
    void StopFeatureSet(unsigned int, std::shared_ptr<ServiceEventList>) override {
        note("stop");
        started = false;
    }
    void Destroy() override {
        note("destroy");
        if (onDestroy) {
            onDestroy();
        }
        started = false;
    }
    bool IsFeatureSetStarted(unsigned int) override { return started; }
    bool IsFeatureSetProvisioned(unsigned int number) override { return hasAccess() && number == id; }
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int) override {
        return hasAccess() ? std::vector<unsigned int>{7} : std::vector<unsigned int>{};
    }

    std::function<void()> onStart;
    std::function<void()> onDestroy;
    bool refusesStart = false;

private:
    bool hasAccess() const { return factory->getServicesDispatcher()->checkForUpdateAccess(); }
    void note(const std::string& entry) { journal.add(hasAccess() ? entry : entry + " on a wrong thread"); }

    const std::shared_ptr<UnifiedFactory> factory;
    Journal& journal;
    bool started = false;
};

class TestService : public virtual UnifiedService {};

class ListeningService final : public UnifiedBusinessObjectImpl,
                               public virtual TestService,
                               public FeatureSetReadyListener {
public:
    ListeningService(std::shared_ptr<UnifiedFactory> owner, Journal& target)
        : UnifiedBusinessObjectImpl(owner, "ListeningService"), factory(std::move(owner)), journal(target) {}

    using UnifiedBusinessObjectImpl::addObserver;
    using UnifiedBusinessObjectImpl::removeObserver;
    void addObserver(std::weak_ptr<UnifiedServiceObserver>) override {}
    void removeObserver(std::weak_ptr<UnifiedServiceObserver>) override {}
    std::shared_ptr<UnifiedServiceNotifiers> getUnifiedServiceNotifiers() override { return nullptr; }
    bool getBulkUpdateInProgress() override { return false; }
    void onFeatureSetReady(bool ready) override {
        EnsureUpdateAccess(true);
        journal.add(ready ? "ready" : "not ready");
    }

private:
    void initNotifiers() override {}

    const std::shared_ptr<UnifiedFactory> factory;
    Journal& journal;
};

class ResetCallback final : public ProviderResetDataCallback {
public:
    explicit ResetCallback(std::function<void(int)> function) : work(std::move(function)) {}
    void InvokeResetData(ResetDataOptionEnum::ResetDataOption option) override { work(option); }

private:
    std::function<void(int)> work;
};

std::shared_ptr<UnifiedFactoryImpl>
makeFactory(UnifiedFactoryOptions::ServicesThread thread = UnifiedFactoryOptions::ServicesThread::Own) {
    UnifiedFactoryOptions options;
    options.servicesThread = thread;
    auto factory = std::make_shared<UnifiedFactoryImpl>(options);
    factory->Init();
    return factory;
}

/// Fails a test that leaves one object behind.
class UnifiedFactoryImplTest : public testing::Test {
protected:
    void TearDown() override {
        factory->Destroy();
        const std::weak_ptr<UnifiedFactoryImpl> watched = factory;
        featureSet.reset();
        factory.reset();
        EXPECT_TRUE(watched.expired()) << watched.use_count() << " references left";
    }

    void fileFeatureSet() {
        featureSet = std::make_shared<RecordingFeatureSet>(factory, journal);
        factory->getFeatureSets().registerItem(id, std::shared_ptr<TestFeatureSet>(featureSet));
    }
    void fileService() {
        factory->getServices().registerItem(
            id, std::shared_ptr<TestService>(std::make_shared<ListeningService>(factory, journal)));
    }
    void onServicesThread(std::function<void()> work) {
        factory->getServicesDispatcher()->enqueueBlock(task(std::move(work)), false);
    }

    Journal journal;
    std::shared_ptr<UnifiedFactoryImpl> factory = makeFactory();
    std::shared_ptr<RecordingFeatureSet> featureSet;
};

} // namespace

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

TEST_F(UnifiedFactoryImplTest, ForwardsAtOnceWhenCalledOnTheServicesDispatchersThread) {
    fileFeatureSet();
    onServicesThread([&] {
        factory->StartFeatureSet(id, nullptr);
        journal.add(factory->IsFeatureSetStarted(id) ? "started" : "not started");
        factory->StopFeatureSet(id, nullptr);
        journal.add("end of task");
    });
    EXPECT_THAT(journal.get(), ElementsAre("start", "started", "stop", "end of task"));
}

TEST_F(UnifiedFactoryImplTest, AnUnknownFeatureSetIsNothing) {
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

TEST_F(UnifiedFactoryImplTest, TellsTheServiceOfTheSameNumberAfterAStartThatSucceeded) {
    fileFeatureSet();
    fileService();
    factory->StartFeatureSet(id, nullptr);
    EXPECT_THAT(journal.get(), ElementsAre("start", "ready"));
}

TEST_F(UnifiedFactoryImplTest, TellsNothingOfAStartThatFailedOrWasNotNeeded) {
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

TEST_F(UnifiedFactoryImplTest, WhatTheBackgroundHasToWriteIsWrittenBeforeAndAfterStartStopAndReset) {
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

TEST_F(UnifiedFactoryImplTest, AStartReturnsOnlyWhenWhatItPostedIsWritten) {
    fileFeatureSet();
    Signal never;
    featureSet->onStart = [&] {
        factory->getBackgroundDispatcher()->enqueue(
            [&] {
                EXPECT_FALSE(never.waitFor(std::chrono::milliseconds(20))); // a slow disk
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

TEST_F(UnifiedFactoryImplTest, ABackgroundTaskMayWaitForTheServicesThreadThatWaitsForIt) {
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

TEST_F(UnifiedFactoryImplTest, DestroyStopsWhatIsStartedThenDestroysAndLetsGo) {
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

TEST_F(UnifiedFactoryImplTest, DestroyDoesNotStopWhatIsNotStarted) {
    fileFeatureSet();
    factory->Destroy();
    EXPECT_THAT(journal.get(), ElementsAre("destroy"));
}

TEST_F(UnifiedFactoryImplTest, DestroyTwiceDestroysOnce) {
    fileFeatureSet();
    factory->Destroy();
    factory->Destroy();
    EXPECT_THAT(journal.get(), ElementsAre("destroy"));
}

TEST_F(UnifiedFactoryImplTest, DestroyRunsWhatBothDispatchersHold) {
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

TEST_F(UnifiedFactoryImplTest, DestroyGoesOnAfterAFeatureSetThatThrows) {
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

TEST_F(UnifiedFactoryImplTest, DestroyLetsGoOfTheResetCallbacks) {
    const auto registry = factory->getServiceByType<SystemService>()->getResetDataCallbackRegistry();
    auto callback = std::make_shared<ResetCallback>([](int) {});
    const std::weak_ptr<ResetCallback> watched = callback;
    registry->add(0, std::move(callback));
    factory->Destroy();
    EXPECT_TRUE(watched.expired());
}

TEST_F(UnifiedFactoryImplTest, WhatIsDestroyedIsNeitherStartedAgainNorReset) {
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

TEST_F(UnifiedFactoryImplTest, TheDispatchersKeepAnsweringAfterTheEnd) {
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

TEST_F(UnifiedFactoryImplTest, ASecondInitChangesNothing) {
    const auto service = factory->getServiceByType<SystemService>();
    factory->Init();
    EXPECT_EQ(factory->getServiceByType<SystemService>(), service);
}

TEST_F(UnifiedFactoryImplTest, TasksQueuedBeforeInitAreKept) {
    const auto late = std::make_shared<UnifiedFactoryImpl>();
    Signal ran;
    late->getServicesDispatcher()->enqueue(task([&] { ran.set(); }), false);
    late->Init();
    EXPECT_TRUE(ran.wait());
    late->Destroy();
}

TEST_F(UnifiedFactoryImplTest, HandsOutThePersistorItWasGiven) {
    EXPECT_EQ(factory->getDataPersistor(), nullptr);
    const auto given = std::make_shared<IDataPersistor>();
    factory->setDataPersistor(given);
    EXPECT_EQ(factory->getDataPersistor(), given);
    EXPECT_EQ(factory->getResourceMonitor(), nullptr);
}

TEST(PumpedUnifiedFactory, ForwardsAtOnceOnTheThreadThatInitialisedIt) {
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
