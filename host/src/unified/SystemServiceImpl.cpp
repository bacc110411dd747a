#include "SystemServiceImpl.h"

#include <unified/SystemServiceObserver.h>
#include <zel/ZelLog.h>

#include <string>
#include <utility>

namespace ZelUnified {

namespace {

ZelLogger& systemServiceLogger = ZelLogger_getLogger("UnifiedFactory-SystemService");

ZelLogLevel levelOf(ServiceEventSeverityEnum::ServiceEventSeverity severity) {
    switch (severity) {
    case ServiceEventSeverityEnum::Info:
        return ZelLogLevel::Info;
    case ServiceEventSeverityEnum::Warning:
        return ZelLogLevel::Warning;
    case ServiceEventSeverityEnum::Error:
    case ServiceEventSeverityEnum::Critical:
        break;
    }
    return ZelLogLevel::Error;
}

} // namespace

SystemServiceImpl::SystemServiceImpl(const std::shared_ptr<UnifiedFactory>& factory,
                                     std::shared_ptr<ResetDataCallbackRegistryImpl> callbacks,
                                     std::weak_ptr<ServiceEventListener> eventListener)
    : UnifiedBusinessObjectImpl(factory, "SystemServiceImpl"),
      resetCallbacks(std::move(callbacks)),
      listener(std::move(eventListener)) {}

void SystemServiceImpl::addObserver(std::weak_ptr<UnifiedServiceObserver> observer) {
    UnifiedBusinessObjectImpl::addObserver(std::move(observer));
}

void SystemServiceImpl::removeObserver(std::weak_ptr<UnifiedServiceObserver> observer) {
    UnifiedBusinessObjectImpl::removeObserver(std::move(observer));
}

void SystemServiceImpl::addObserver(std::weak_ptr<SystemServiceObserver> observer) {
    UnifiedBusinessObjectImpl::addObserver(std::move(observer));
}

void SystemServiceImpl::removeObserver(std::weak_ptr<SystemServiceObserver> observer) {
    UnifiedBusinessObjectImpl::removeObserver(std::move(observer));
}

void SystemServiceImpl::addServiceEvent(int code, int eventId,
                                        ServiceEventSeverityEnum::ServiceEventSeverity severity) {
    EnsureUpdateAccess(true);
    ZelLog(systemServiceLogger, levelOf(severity), ZEL_HERE,
           "Service event, code: " + std::to_string(code) + ", event: " + std::to_string(eventId));
    if (const auto told = listener.lock()) {
        told->onServiceEvent({code, eventId, severity});
    }
}

} // namespace ZelUnified
