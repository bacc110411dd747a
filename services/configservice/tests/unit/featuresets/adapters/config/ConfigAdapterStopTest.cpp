#include "ConfigAdapterFixture.h"

#include <kyr/FunctionTask.h>
#include <unified/UnifiedFactoryImpl.h>

#include <ConfigServiceIds.h>
#include <HeldServicesDispatcher.h>
#include <Signal.h>
#include <Watchdog.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ZelUnified {

using testing::ElementsAre;

namespace {

/// Records the names of pending tasks.
class NamingDispatcher final : public Processing::ServicesDispatcher {
public:
    explicit NamingDispatcher(std::shared_ptr<Processing::ServicesDispatcher> target) : dispatcher(std::move(target)) {}

    bool checkForUpdateAccess() const override { return dispatcher->checkForUpdateAccess(); }
    void enqueue(std::shared_ptr<zel::Task> task, bool ahead) override { dispatcher->enqueue(task, ahead); }
    void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) override {
        awaited.push_back(task->getName());
        dispatcher->enqueueBlock(task, ahead);
        if (whenWaitedFor) {
            whenWaitedFor();
        }
    }

    std::vector<std::string> awaited;
    std::function<void()> whenWaitedFor; ///< Called at the end of each wait.

private:
    const std::shared_ptr<Processing::ServicesDispatcher> dispatcher;
};

class NamingFactory final : public testing_host::RecordingFactory {
public:
    std::shared_ptr<Processing::ServicesDispatcher> getServicesDispatcher() override { return naming; }

    const std::shared_ptr<NamingDispatcher> naming = std::make_shared<NamingDispatcher>(servicesDispatcher);
};

/// Reports that a stop is in progress: it holds the adapter's mutex then, and next waits for the dispatcher.
class StopTellingMonitor final : public ZelSystemMonitor::SystemMonitor {
public:
    void addPowerEventObserver(std::weak_ptr<ZelSystemMonitor::PowerEventObserver>) override {}
    void removePowerEventObserver(std::weak_ptr<ZelSystemMonitor::PowerEventObserver>) override { stopping.set(); }

    testing_host::Signal stopping;
};

/// The service on a factory with its own threads. A deadlock ends the test with the stacks.
class ConfigAdapterStop : public testing::Test {
protected:
    ConfigAdapterStop() {
        ZelSystemMonitor::SystemMonitorFactory::overrideInstance(monitor);
        factory->Init();
        factory->getServicesDispatcher()->enqueueBlock(
            std::make_shared<KyrCoreUtils::FunctionTask>([this] { InjectConfigService(factory); }, "inject"), false);
        factory->StartFeatureSet(configServiceId, nullptr);
        service = factory->getServiceByType<ConfigService>();
        featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
    }
    ~ConfigAdapterStop() override {
        service.reset();
        featureSet.reset();
        factory->Destroy();
        ZelSystemMonitor::SystemMonitorFactory::overrideInstance(nullptr);
    }

    void post(std::function<void()> work) {
        factory->getServicesDispatcher()->enqueue(
            std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), "posted by the test"), false);
    }

    const testing_host::TemporaryProfile profile;
    const testing_host::InMemoryRegistry::Installed registry;
    const testing_host::Watchdog watchdog;
    const std::shared_ptr<StopTellingMonitor> monitor = std::make_shared<StopTellingMonitor>();
    const std::shared_ptr<UnifiedFactoryImpl> factory = std::make_shared<UnifiedFactoryImpl>();
    std::shared_ptr<ConfigService> service;
    std::shared_ptr<ConfigFeatureSet> featureSet;
};

} // namespace

class ConfigAdapterStopTask : public ConfigAdapterFixture {};

TEST_F(ConfigAdapterStopTask, IsPostedUnderItsNameAndAwaited) {
    const auto naming = std::make_shared<NamingFactory>();
    factory = naming;
    loadAndStart();
    naming->servicesDispatcher->disown();
    adapter->StopFeatureSet(1300, nullptr);
    EXPECT_THAT(naming->naming->awaited, ElementsAre("ConfigStoreManager::reset"));
    EXPECT_FALSE(inChain("RegistryConfigStore"));
}

TEST_F(ConfigAdapterStopTask, LeavesTheFeatureSetStartedUntilItHasRun) {
    const auto naming = std::make_shared<NamingFactory>();
    factory = naming;
    loadAndStart();
    bool started = false;
    naming->naming->whenWaitedFor = [&] { started = adapter->IsFeatureSetStarted(1300); };
    adapter->StopFeatureSet(1300, nullptr);
    EXPECT_TRUE(started);
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
}

TEST_F(ConfigAdapterStop, WaitsForADispatcherThatUsesTheChain) {
    std::wstring seen;
    post([&] {
        ASSERT_TRUE(monitor->stopping.wait());
        service->setConfig(L"k", L"v");
        seen = service->getConfig(L"k")->getValue();
        featureSet->addConfigStore(makeReadOnlyStore("Foreign", 100, {{L"f", L"1"}}));
        EXPECT_TRUE(featureSet->isConfigStorePresent("Foreign"));
        featureSet->addServiceEvent(1, ConfigServiceIdsEnum::TFTPDownloadFailed, ServiceEventSeverityEnum::Error);
        service->setKeySensitive(L"k");
        service->removeConfigStoreAndCache(L"Foreign");
        service->resetConfig(L"k");
        service->logConfig();
    });
    factory->getFeatureSetAdapter(configServiceId)->StopFeatureSet(configServiceId, nullptr);
    EXPECT_EQ(seen, L"v") << "tasks queued before the stop have run";
    EXPECT_FALSE(factory->IsFeatureSetStarted(configServiceId));
}

TEST_F(ConfigAdapterStop, WaitsWhileWorkersPostChangesAndEvents) {
    testing_host::Signal posted;
    std::thread worker([&] {
        ASSERT_TRUE(monitor->stopping.wait());
        featureSet->setConfig(L"k", L"v");
        featureSet->setKeySensitive(L"k");
        featureSet->addServiceEvent(1, ConfigServiceIdsEnum::TFTPDownloadFailed, ServiceEventSeverityEnum::Error);
        posted.set();
    });
    post([&] { ASSERT_TRUE(posted.wait()); });
    factory->getFeatureSetAdapter(configServiceId)->StopFeatureSet(configServiceId, nullptr);
    worker.join();
    EXPECT_FALSE(factory->IsFeatureSetStarted(configServiceId));
}

TEST_F(ConfigAdapterStop, StopByTheHostDoesNotDeadlockWithRefreshesOnTheDispatcher) {
    constexpr int refreshes = 5;
    int done = 0;
    for (int i = 0; i < refreshes; ++i) {
        post([&] {
            service->getConfig(L"k");
            featureSet->refreshConfigFeatureSet();
            ++done;
        });
    }
    factory->StopFeatureSet(configServiceId, nullptr);
    EXPECT_EQ(done, refreshes);
    EXPECT_FALSE(factory->IsFeatureSetStarted(configServiceId));
}

} // namespace ZelUnified
