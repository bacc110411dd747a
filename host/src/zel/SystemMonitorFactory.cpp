#include "SystemMonitorImpl.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <zel/SystemMonitorFactory.h>

namespace ZelSystemMonitor {

namespace {

struct Instance {
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::shared_ptr<SystemMonitor> overriding LUMORA_GUARDED_BY(mutex);
    const std::shared_ptr<SystemMonitorImpl> own = std::make_shared<SystemMonitorImpl>();
};

Instance& instance() {
    static Instance held;
    return held;
}

} // namespace

std::shared_ptr<SystemMonitor> SystemMonitorFactory::getInstance() {
    auto& held = instance();
    const KyrCoreUtils::LockGuard lock(held.mutex);
    if (held.overriding) {
        return held.overriding;
    }
    return held.own;
}

void SystemMonitorFactory::overrideInstance(std::shared_ptr<SystemMonitor> monitor) {
    auto& held = instance();
    const KyrCoreUtils::LockGuard lock(held.mutex);
    held.overriding.swap(monitor);
}

std::shared_ptr<SystemMonitorImpl> SystemMonitorImpl::getMachineMonitor() {
    return instance().own;
}

} // namespace ZelSystemMonitor
