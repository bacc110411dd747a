#include "zel/SystemMonitorImpl.h"

#include "RecordingPowerObserver.h"
#include "unified/ServicesDispatcherImpl.h"

#include <HeldServicesDispatcher.h>
#include <LogRecorder.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using namespace ZelSystemMonitor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::HeldServicesDispatcher;
using testing_host::LogRecorder;
using testing_host::RecordingPowerObserver;

namespace {

/// Fires events through a source that the test controls.
class SystemMonitorImplTest : public testing::Test {
protected:
    class Source final : public PowerEventSource {
    public:
        explicit Source(int& number) : open(number) { ++open; }
        ~Source() override { --open; }

    private:
        int& open;
    };

    std::shared_ptr<RecordingPowerObserver> addObserver(std::function<void(RecordingPowerObserver::Type)> work = {}) {
        auto observer = std::make_shared<RecordingPowerObserver>(std::move(work));
        monitor->addPowerEventObserver(observer);
        return observer;
    }

    /// Fires the event. Returns a weak pointer that expires when nothing delays the machine any more.
    std::weak_ptr<const void> announce(PowerEventTypeEnum::PowerEventType type) {
        auto hold = std::make_shared<const int>(0);
        std::weak_ptr<const void> watched = hold;
        receiver(type, std::move(hold));
        return watched;
    }

    int openSources = 0;
    PowerEventReceiver receiver;
    std::shared_ptr<SystemMonitorImpl> monitor = std::make_shared<SystemMonitorImpl>([this](PowerEventReceiver given) {
        receiver = std::move(given);
        return std::make_unique<Source>(openSources);
    });
};

} // namespace

TEST_F(SystemMonitorImplTest, OpensItsSourceForTheFirstObserver) {
    EXPECT_EQ(openSources, 0);
    const auto first = addObserver();
    EXPECT_EQ(openSources, 1);
    const auto second = addObserver();
    EXPECT_EQ(openSources, 1);
    monitor.reset();
    EXPECT_EQ(openSources, 0);
}

TEST_F(SystemMonitorImplTest, AnObserverThatIsAddedTwiceIsCalledOnce) {
    const auto observer = addObserver();
    monitor->addPowerEventObserver(observer);
    announce(PowerEventTypeEnum::Suspend);
    EXPECT_THAT(observer->getTypes(), ElementsAre(1));
}

TEST_F(SystemMonitorImplTest, CallsLiveObserversInTheOrderTheyWereAdded) {
    std::vector<char> told;
    const auto first = addObserver([&](auto) { told.push_back('a'); });
    const auto removed = addObserver([&](auto) { told.push_back('b'); });
    auto dead = addObserver([&](auto) { told.push_back('c'); });
    const auto last = addObserver([&](auto) { told.push_back('d'); });
    monitor->removePowerEventObserver(removed);
    dead.reset();
    announce(PowerEventTypeEnum::PowerDown);
    EXPECT_THAT(told, ElementsAre('a', 'd'));
}

TEST_F(SystemMonitorImplTest, AnObserverMayAddAndRemoveObserversWhileItIsCalled) {
    std::shared_ptr<RecordingPowerObserver> late;
    std::shared_ptr<RecordingPowerObserver> first;
    first = addObserver([&](auto) {
        monitor->removePowerEventObserver(first);
        late = addObserver();
    });
    announce(PowerEventTypeEnum::Suspend);
    announce(PowerEventTypeEnum::Resume);
    EXPECT_THAT(first->getTypes(), ElementsAre(1));
    EXPECT_THAT(late->getTypes(), ElementsAre(2));
}

TEST_F(SystemMonitorImplTest, AnObserverThatThrowsIsLoggedAndTheNextOneIsCalled) {
    const LogRecorder log;
    const auto failing = addObserver([](auto) { throw std::runtime_error("no space left"); });
    const auto odd = addObserver([](auto) { throw 7; });
    const auto next = addObserver();
    announce(PowerEventTypeEnum::PowerDown);
    EXPECT_THAT(next->getTypes(), ElementsAre(3));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("A power event observer failed: no space left", "A power event observer failed."));
}

TEST_F(SystemMonitorImplTest, TheInhibitorIsHeldUntilTheLastObserverReturns) {
    std::weak_ptr<const void> hold;
    bool held = false;
    const auto first = addObserver();
    const auto last = addObserver([&](auto) { held = !hold.expired(); });
    auto given = std::make_shared<const int>(0);
    hold = given;
    receiver(PowerEventTypeEnum::PowerDown, std::move(given));
    EXPECT_TRUE(held);
    EXPECT_TRUE(hold.expired());
}

TEST_F(SystemMonitorImplTest, TheInhibitorIsHeldWhileADispatcherCallsTheObservers) {
    const auto dispatcher = std::make_shared<HeldServicesDispatcher>();
    monitor->attach(dispatcher);
    bool held = false;
    std::weak_ptr<const void> hold;
    const auto observer = addObserver([&](auto) { held = !hold.expired(); });
    hold = announce(PowerEventTypeEnum::PowerDown);
    EXPECT_THAT(observer->getTypes(), IsEmpty());
    EXPECT_FALSE(hold.expired());
    EXPECT_THAT(dispatcher->getTaskNames(), ElementsAre("SystemMonitor::notify"));
    dispatcher->runAll();
    EXPECT_THAT(observer->getTypes(), ElementsAre(3));
    EXPECT_TRUE(held);
    EXPECT_TRUE(hold.expired());
}

TEST_F(SystemMonitorImplTest, APowerDownIsPreparedOnTheDispatcherBeforeObserversAreCalled) {
    const auto dispatcher = std::make_shared<HeldServicesDispatcher>();
    std::vector<std::string> order;
    monitor->attach(dispatcher, [&] { order.push_back("prepared"); });
    const auto observer = addObserver([&](auto type) { order.push_back("told " + std::to_string(type)); });
    announce(PowerEventTypeEnum::Suspend);
    announce(PowerEventTypeEnum::PowerDown);
    EXPECT_TRUE(order.empty());
    dispatcher->runAll();
    EXPECT_THAT(order, ElementsAre("told 1", "prepared", "told 3"));
}

TEST_F(SystemMonitorImplTest, ObserversAreCalledAfterAFailedPreparation) {
    const LogRecorder log;
    const auto dispatcher = std::make_shared<HeldServicesDispatcher>();
    monitor->attach(dispatcher, [] { throw std::runtime_error("no"); });
    const auto observer = addObserver();
    announce(PowerEventTypeEnum::PowerDown);
    dispatcher->runAll();
    EXPECT_THAT(observer->getTypes(), ElementsAre(3));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre("Preparing the power-down failed: no"));
}

TEST_F(SystemMonitorImplTest, AnEndedDispatcherDoesNotHoldTheInhibitor) {
    using ZelUnified::Processing::SerialQueue;
    const auto dispatcher =
        std::make_shared<ZelUnified::Processing::ServicesDispatcherImpl>(SerialQueue::Mode::OwnThread);
    monitor->attach(dispatcher);
    dispatcher->getQueue().start();
    dispatcher->getQueue().end();
    const auto observer = addObserver();
    EXPECT_TRUE(announce(PowerEventTypeEnum::PowerDown).expired());
    EXPECT_THAT(observer->getTypes(), IsEmpty());
}

TEST_F(SystemMonitorImplTest, TheLastAttachedDispatcherCallsTheObservers) {
    const auto first = std::make_shared<HeldServicesDispatcher>();
    const auto second = std::make_shared<HeldServicesDispatcher>();
    monitor->attach(first);
    monitor->attach(second);
    const auto observer = addObserver();
    announce(PowerEventTypeEnum::Suspend);
    EXPECT_THAT(first->getTaskNames(), IsEmpty());
    EXPECT_THAT(second->getTaskNames(), testing::SizeIs(1));
    monitor->detach(second);
    EXPECT_EQ(openSources, 1);
    announce(PowerEventTypeEnum::Resume);
    EXPECT_THAT(first->getTaskNames(), testing::SizeIs(1));
}

TEST_F(SystemMonitorImplTest, DetachingTheLastDispatcherClosesTheSource) {
    auto forgotten = std::make_shared<HeldServicesDispatcher>();
    const auto dispatcher = std::make_shared<HeldServicesDispatcher>();
    monitor->attach(forgotten);
    monitor->attach(dispatcher);
    const auto observer = addObserver();
    forgotten.reset();
    monitor->detach(dispatcher);
    EXPECT_EQ(openSources, 0);
}

TEST_F(SystemMonitorImplTest, AttachingADispatcherOpensTheSourceForRemainingObservers) {
    const auto dispatcher = std::make_shared<HeldServicesDispatcher>();
    monitor->attach(dispatcher);
    auto observer = addObserver();
    monitor->detach(dispatcher);
    monitor->attach(dispatcher);
    EXPECT_EQ(openSources, 1);
    monitor->detach(dispatcher);
    observer.reset();
    monitor->attach(dispatcher);
    EXPECT_EQ(openSources, 0);
}

TEST_F(SystemMonitorImplTest, WithoutASourceNoObserverIsCalled) {
    const auto silent = std::make_shared<SystemMonitorImpl>([](const PowerEventReceiver&) { return nullptr; });
    const auto observer = std::make_shared<RecordingPowerObserver>();
    silent->addPowerEventObserver(observer);
    silent->removePowerEventObserver(observer);
    EXPECT_THAT(observer->getTypes(), IsEmpty());
}
