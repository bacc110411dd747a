#include "SystemMonitorImpl.h"

#include <zel/SystemMonitorFactory.h>

#include <mutex>

namespace ZelSystemMonitor {

namespace {

struct Instance {
    std::mutex mutex;
    std::shared_ptr<SystemMonitor> overriding;
    const std::shared_ptr<SystemMonitorImpl> own = std::make_shared<SystemMonitorImpl>();
};

Instance& instance() {
    static Instance held;
    return held;
}

} // namespace

std::shared_ptr<SystemMonitor> SystemMonitorFactory::getInstance() {
    auto& held = instance();
    const std::lock_guard lock(held.mutex);
    if (held.overriding) {
        return held.overriding;
    }
    return held.own;
}

void SystemMonitorFactory::overrideInstance(std::shared_ptr<SystemMonitor> monitor) {
    auto& held = instance();
    const std::lock_guard lock(held.mutex);
    held.overriding.swap(monitor);
}

std::shared_ptr<SystemMonitorImpl> SystemMonitorImpl::getMachineMonitor() {
    return instance().own;
}

} // namespace ZelSystemMonitor
