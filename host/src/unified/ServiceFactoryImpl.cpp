#include <unified/ServiceFactoryImpl.h>

#include <utility>

namespace ZelUnified {

ServiceFactoryImpl::ServiceFactoryImpl(std::shared_ptr<UnifiedFactoryImpl> unifiedFactory)
    : factory(std::move(unifiedFactory)) {}

std::shared_ptr<UnifiedService> ServiceFactoryImpl::getService(unsigned int id) {
    return factory->getServices().getItem(id);
}

void ServiceFactoryImpl::reset() {
    factory->Destroy();
}

void ServiceFactoryImpl::setDispatcherCallback(std::shared_ptr<ServicesDispatcherCallback> callback) {
    factory->setDispatcherCallback(std::move(callback));
}

void ServiceFactoryImpl::resetDispatcherThread() {
    factory->resetDispatcherThread();
}

bool ServiceFactoryImpl::waitForDispatcherTask(std::chrono::milliseconds timeout) {
    return factory->waitForDispatcherTask(timeout);
}

bool ServiceFactoryImpl::pumpNextDispatcherTask() {
    return factory->pumpNextDispatcherTask();
}

void ServiceFactoryImpl::pumpAllDispatcherTasks() {
    factory->pumpAllDispatcherTasks();
}

} // namespace ZelUnified
