#include "PowerSwitch.h"

#include <kyr/LockGuard.h>

#include <algorithm>
#include <utility>

namespace lumora_config {

using ZelSystemMonitor::PowerEventObserver;

namespace {

auto sameAs(const std::weak_ptr<PowerEventObserver>& observer) {
    return [&observer](const std::weak_ptr<PowerEventObserver>& other) {
        return !observer.owner_before(other) && !other.owner_before(observer);
    };
}

} // namespace

void PowerSwitch::addPowerEventObserver(std::weak_ptr<PowerEventObserver> observer) {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (std::ranges::none_of(observers, sameAs(observer))) {
        observers.push_back(std::move(observer));
    }
}

void PowerSwitch::removePowerEventObserver(std::weak_ptr<PowerEventObserver> observer) {
    const KyrCoreUtils::LockGuard lock(mutex);
    std::erase_if(observers, sameAs(observer));
}

std::size_t PowerSwitch::announce(ZelSystemMonitor::PowerEventTypeEnum::PowerEventType type) {
    std::vector<std::shared_ptr<PowerEventObserver>> alive;
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        for (const auto& observer : observers) {
            if (auto living = observer.lock()) {
                alive.push_back(std::move(living));
            }
        }
    }
    for (const auto& observer : alive) {
        observer->onPowerEvent(type);
    }
    return alive.size();
}

} // namespace lumora_config
