#include "SystemMonitorImpl.h"

#include <kyr/FunctionTask.h>
#include <kyr/LockGuard.h>
#include <zel/ZelLog.h>

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

namespace ZelSystemMonitor {

namespace {

using PowerEventTypeEnum::PowerEventType;

ZelLogger& monitorLogger = ZelLogger_getLogger("SystemMonitor");

template <class T>
bool isSame(const std::weak_ptr<T>& a, const std::weak_ptr<T>& b) {
    return !a.owner_before(b) && !b.owner_before(a);
}

/// Logs an exception, so that the other observers can still save their data.
void runGuarded(const std::string& who, const std::function<void()>& work) {
    try {
        work();
    } catch (const std::exception& failure) {
        ZelLog(monitorLogger, ZelLogLevel::Error, ZEL_HERE, who + " failed: " + failure.what());
    } catch (...) {
        ZelLog(monitorLogger, ZelLogLevel::Error, ZEL_HERE, who + " failed.");
    }
}

} // namespace

SystemMonitorImpl::SystemMonitorImpl(SourceOpener sourceOpener) : opener(std::move(sourceOpener)) {}

SystemMonitorImpl::~SystemMonitorImpl() = default;

void SystemMonitorImpl::addPowerEventObserver(std::weak_ptr<PowerEventObserver> observer) {
    const KyrCoreUtils::LockGuard lock(mutex);
    const bool known =
        std::any_of(observers.begin(), observers.end(), [&](const auto& present) { return isSame(present, observer); });
    if (!known) {
        observers.push_back(std::move(observer));
    }
    openSource();
}

void SystemMonitorImpl::removePowerEventObserver(std::weak_ptr<PowerEventObserver> observer) {
    const KyrCoreUtils::LockGuard lock(mutex);
    std::erase_if(observers, [&](const auto& present) { return isSame(present, observer) || present.expired(); });
}

void SystemMonitorImpl::attach(const std::shared_ptr<Dispatcher>& dispatcher, std::function<void()> beforePowerDown) {
    const KyrCoreUtils::LockGuard lock(mutex);
    attachments.push_back({dispatcher, std::move(beforePowerDown)});
    std::erase_if(observers, [](const auto& present) { return present.expired(); });
    if (!observers.empty()) {
        openSource();
    }
}

void SystemMonitorImpl::detach(const std::shared_ptr<Dispatcher>& dispatcher) {
    std::unique_ptr<PowerEventSource> closing;
    const KyrCoreUtils::LockGuard lock(mutex);
    std::erase_if(attachments, [&](const auto& present) {
        return present.dispatcher.expired() || isSame(present.dispatcher, std::weak_ptr(dispatcher));
    });
    if (attachments.empty()) {
        closing.swap(source);
    }
}

void SystemMonitorImpl::openSource() {
    if (source) {
        return;
    }
    source = opener([self = weak_from_this()](PowerEventType type, PowerEventHold hold) {
        if (const auto alive = self.lock()) {
            alive->receive(type, std::move(hold));
        }
    });
}

void SystemMonitorImpl::receive(PowerEventType type, PowerEventHold hold) {
    ZelLog(monitorLogger, ZelLogLevel::Info, ZEL_HERE, "The machine announces power event " + std::to_string(type));
    std::function<void()> beforePowerDown;
    const auto dispatcher = getDispatcher(beforePowerDown);
    if (!dispatcher) {
        notify(type, {});
        return;
    }
    // The task owns the hold, so dropping the task releases it, too.
    dispatcher->enqueue(
        std::make_shared<KyrCoreUtils::FunctionTask>(
            [self = weak_from_this(), type, held = std::move(hold), prepare = std::move(beforePowerDown)] {
                if (const auto alive = self.lock()) {
                    alive->notify(type, prepare);
                }
            },
            "SystemMonitor::notify"),
        false);
}

/// Returns the last attached dispatcher and its `beforePowerDown`; null if there is none.
std::shared_ptr<SystemMonitorImpl::Dispatcher>
SystemMonitorImpl::getDispatcher(std::function<void()>& beforePowerDown) const {
    const KyrCoreUtils::LockGuard lock(mutex);
    for (auto last = attachments.rbegin(); last != attachments.rend(); ++last) {
        if (auto alive = last->dispatcher.lock()) {
            beforePowerDown = last->beforePowerDown;
            return alive;
        }
    }
    return nullptr;
}

std::vector<std::shared_ptr<PowerEventObserver>> SystemMonitorImpl::getLivingObservers() const {
    std::vector<std::shared_ptr<PowerEventObserver>> living;
    const KyrCoreUtils::LockGuard lock(mutex);
    for (const auto& observer : observers) {
        if (auto alive = observer.lock()) {
            living.push_back(std::move(alive));
        }
    }
    return living;
}

void SystemMonitorImpl::notify(PowerEventType type, const std::function<void()>& beforePowerDown) const {
    if (type == PowerEventTypeEnum::PowerDown && beforePowerDown) {
        runGuarded("Preparing the power-down", beforePowerDown);
    }
    for (const auto& observer : getLivingObservers()) {
        runGuarded("A power event observer", [&] { observer->onPowerEvent(type); });
    }
}

} // namespace ZelSystemMonitor
