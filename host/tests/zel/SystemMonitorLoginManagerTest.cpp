#include "LoginManagerMock.h"
#include "RecordingPowerObserver.h"
#include "zel/SystemMonitorImpl.h"

#include <unified/UnifiedFactoryImpl.h>
#include <zel/LogSink.h>
#include <zel/SystemMonitorFactory.h>

#include <Signal.h>
#include <stdlib.h>

#include <atomic>
#include <memory>
#include <optional>

using namespace ZelSystemMonitor;
using testing::ElementsAre;
using testing_host::LoginManagerMock;
using testing_host::PrivateSystemBus;
using testing_host::RecordingPowerObserver;
using testing_host::Signal;

namespace {

/// A monitor connected to a private bus.
class SystemMonitorLoginManager : public testing::Test {
protected:
    void listen(std::function<void(RecordingPowerObserver::Type)> whenCalled = {}) {
        observer = std::make_shared<RecordingPowerObserver>(std::move(whenCalled));
        monitor->addPowerEventObserver(observer);
    }

    PrivateSystemBus bus;
    std::shared_ptr<RecordingPowerObserver> observer;
    std::shared_ptr<SystemMonitorImpl> monitor = std::make_shared<SystemMonitorImpl>();
};

/// Waits for the log line with the reason why no events are delivered.
class SilenceSink final : public zel::logging::LogSink {
public:
    void write(const zel::logging::LogRecord& record) override {
        if (record.text.starts_with("No power events are delivered: ")) {
            written.set();
        }
    }

    Signal written;
};

class SilenceLog {
public:
    SilenceLog() { zel::logging::addSink(sink); }
    ~SilenceLog() { zel::logging::removeSink(sink); }
    SilenceLog(const SilenceLog&) = delete;
    SilenceLog& operator=(const SilenceLog&) = delete;

    bool wait() { return sink->written.wait(); }

private:
    std::shared_ptr<SilenceSink> sink = std::make_shared<SilenceSink>();
};

} // namespace

TEST_F(SystemMonitorLoginManager, ReportsEachAnnouncementWithItsType) {
    LoginManagerMock manager;
    listen();
    ASSERT_TRUE(manager.waitForInhibitors(1));
    manager.announce("PrepareForSleep", true);
    manager.announce("PrepareForSleep", false);
    manager.announce("PrepareForShutdown", true);
    manager.announce("PrepareForShutdown", false);
    EXPECT_THAT(observer->waitForTypes(4), ElementsAre(1, 2, 3, 0));
}

TEST_F(SystemMonitorLoginManager, AShutdownWaitsUntilTheObserversHaveReturned) {
    LoginManagerMock manager;
    Signal told;
    Signal mayReturn;
    listen([&](auto type) {
        if (type == PowerEventTypeEnum::PowerDown) {
            told.set();
            mayReturn.wait();
        }
    });
    ASSERT_TRUE(manager.waitForInhibitors(1));
    manager.announce("PrepareForShutdown", true);
    ASSERT_TRUE(told.wait());
    EXPECT_THAT(manager.getInhibitors(), ElementsAre("shutdown delay"));
    mayReturn.set();
    EXPECT_TRUE(manager.waitForInhibitors(0));
}

TEST_F(SystemMonitorLoginManager, AfterACancelledShutdownTheNextOneWaitsAgain) {
    LoginManagerMock manager;
    listen();
    ASSERT_TRUE(manager.waitForInhibitors(1));
    for (int round = 0; round < 2; ++round) {
        manager.announce("PrepareForShutdown", true);
        ASSERT_TRUE(manager.waitForInhibitors(0));
        manager.announce("PrepareForShutdown", false);
        ASSERT_TRUE(manager.waitForInhibitors(1));
    }
    EXPECT_THAT(observer->waitForTypes(4), ElementsAre(3, 0, 3, 0));
}

TEST_F(SystemMonitorLoginManager, ConnectsToALoginManagerThatStartsLater) {
    listen();
    LoginManagerMock manager;
    ASSERT_TRUE(manager.waitForInhibitors(1));
    manager.announce("PrepareForShutdown", true);
    EXPECT_THAT(observer->waitForTypes(1), ElementsAre(3));
}

TEST_F(SystemMonitorLoginManager, ConnectsToALoginManagerThatReplacesAnother) {
    std::optional<LoginManagerMock> manager;
    manager.emplace();
    listen();
    ASSERT_TRUE(manager->waitForInhibitors(1));
    manager.reset();
    manager.emplace();
    ASSERT_TRUE(manager->waitForInhibitors(1));
    manager->announce("PrepareForSleep", true);
    EXPECT_THAT(observer->waitForTypes(1), ElementsAre(1));
}

TEST_F(SystemMonitorLoginManager, IgnoresAnnouncementsOfOtherSenders) {
    LoginManagerMock manager;
    listen();
    ASSERT_TRUE(manager.waitForInhibitors(1));
    manager.forge("PrepareForShutdown", true);
    manager.forge("PrepareForSleep", false);
    manager.announce("PrepareForSleep", true);
    EXPECT_THAT(observer->waitForTypes(1), ElementsAre(1));
    EXPECT_THAT(manager.getInhibitors(), ElementsAre("shutdown delay"));
}

TEST_F(SystemMonitorLoginManager, DestroyingTheMonitorReleasesTheInhibitor) {
    LoginManagerMock manager;
    listen();
    ASSERT_TRUE(manager.waitForInhibitors(1));
    monitor.reset();
    EXPECT_TRUE(manager.waitForInhibitors(0));
}

TEST_F(SystemMonitorLoginManager, AnObserverMayDestroyTheMonitor) {
    LoginManagerMock manager;
    Signal listens;
    listen([&](auto) {
        listens.wait();
        monitor.reset();
    });
    ASSERT_TRUE(manager.waitForInhibitors(1));
    listens.set();
    manager.announce("PrepareForSleep", true);
    EXPECT_THAT(observer->waitForTypes(1), ElementsAre(1));
    EXPECT_TRUE(manager.waitForInhibitors(0));
}

TEST_F(SystemMonitorLoginManager, ObserversAreCalledOnTheServicesThreadWhileAFactoryRuns) {
    LoginManagerMock manager;
    const auto factory = std::make_shared<ZelUnified::UnifiedFactoryImpl>();
    factory->Init();
    std::atomic<bool> hasAccess = false;
    const auto told = std::make_shared<RecordingPowerObserver>(
        [&](auto) { hasAccess = factory->getServicesDispatcher()->checkForUpdateAccess(); });
    SystemMonitorFactory::getInstance()->addPowerEventObserver(told);
    ASSERT_TRUE(manager.waitForInhibitors(1));
    manager.announce("PrepareForSleep", true);
    EXPECT_THAT(told->waitForTypes(1), ElementsAre(1));
    EXPECT_TRUE(hasAccess);
    factory->Destroy();
    EXPECT_TRUE(manager.waitForInhibitors(0));
}

TEST_F(SystemMonitorLoginManager, AnObserverMayDestroyTheFactoryAtAPowerDown) {
    LoginManagerMock manager;
    const auto factory = std::make_shared<ZelUnified::UnifiedFactoryImpl>();
    factory->Init();
    const auto told = std::make_shared<RecordingPowerObserver>([&](auto) { factory->Destroy(); });
    SystemMonitorFactory::getInstance()->addPowerEventObserver(told);
    ASSERT_TRUE(manager.waitForInhibitors(1));
    manager.announce("PrepareForShutdown", true);
    EXPECT_THAT(told->waitForTypes(1), ElementsAre(3));
    EXPECT_TRUE(manager.waitForInhibitors(0));
}

TEST_F(SystemMonitorLoginManager, LogsTheEndOfTheBus) {
    SilenceLog log;
    {
        LoginManagerMock manager;
        listen();
        ASSERT_TRUE(manager.waitForInhibitors(1));
    }
    bus.end();
    EXPECT_TRUE(log.wait());
}

TEST(SystemMonitorWithoutBus, LogsALineAndCallsNoObserver) {
    SilenceLog log;
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
    const auto monitor = std::make_shared<SystemMonitorImpl>();
    const auto observer = std::make_shared<RecordingPowerObserver>();
    monitor->addPowerEventObserver(observer);
    EXPECT_TRUE(log.wait());
    monitor->removePowerEventObserver(observer);
    EXPECT_THAT(observer->getTypes(), testing::IsEmpty());
}
