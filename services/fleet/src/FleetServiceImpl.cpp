#include "FleetServiceImpl.h"

#include <kyr/FunctionTask.h>
#include <zel/ZelLog.h>

#include <ConfigServiceIds.h>

#include <utility>

namespace fleet {

namespace {

ZelLogger& serviceLogger = ZelLogger_getLogger("Fleet-Service");

} // namespace

FleetServiceImpl::FleetServiceImpl(std::shared_ptr<ZelUnified::UnifiedFactory> hostFactory, FleetTimes watchTimes)
    : factory(std::move(hostFactory)), times(watchTimes) {}

bool FleetServiceImpl::isFollowing() {
    const KyrCoreUtils::LockGuard lock(mutex);
    return follower != nullptr;
}

void FleetServiceImpl::StartFeatureSet(unsigned int /*id*/, std::shared_ptr<ZelUnified::ServiceEventList> /*events*/) {
    if (configuration) {
        return;
    }
    configuration = factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>();
    if (!configuration) {
        ZelLog(serviceLogger, ZelLogLevel::Error, ZEL_HERE, "There is no configuration service");
        return;
    }
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        started = true;
    }
    FleetSettings::markSensitiveKeys(*configuration);
    configuration->registerConfigStoreAddedObserver(shared_from_this());
    review();
}

void FleetServiceImpl::StopFeatureSet(unsigned int /*id*/, std::shared_ptr<ZelUnified::ServiceEventList> /*events*/) {
    stop();
}

void FleetServiceImpl::Destroy() {
    stop();
}

void FleetServiceImpl::stop() {
    if (configuration) {
        configuration->unregisterConfigStoreAddedObserver(shared_from_this());
        configuration.reset();
    }
    settings = {};
    store.reset();
    std::unique_ptr<FleetFollower> stopped; // ended without the lock
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        started = false;
        follower.swap(stopped);
    }
    stopped.reset();
    mailbox.extract();
}

bool FleetServiceImpl::IsFeatureSetStarted(unsigned int /*id*/) {
    const KyrCoreUtils::LockGuard lock(mutex);
    return started;
}

std::vector<unsigned int> FleetServiceImpl::GetFeatureSetDependencies(unsigned int /*id*/) {
    return {ZelUnified::configServiceId};
}

void FleetServiceImpl::OnConfigStoreAdded(const std::string& addedName) {
    // What drops the store adds others too, so its own arrival needs no review.
    if (addedName != storeName) {
        post("Fleet: review", &FleetServiceImpl::review);
    }
}

void FleetServiceImpl::post(const std::string& name, void (FleetServiceImpl::*work)()) {
    const auto task = [weak = weak_from_this(), work] {
        if (const auto self = weak.lock()) {
            ((*self).*work)();
        }
    };
    factory->getServicesDispatcher()->enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(task, name), false);
}

void FleetServiceImpl::review() {
    // While the configuration is stopped it accepts no store. Its next start announces a store.
    if (!configuration || !factory->IsFeatureSetStarted(ZelUnified::configServiceId)) {
        return;
    }
    const auto current = FleetSettings::read(*configuration);
    if (current != settings) {
        follow(current);
    }
    addStoreIfMissing();
}

void FleetServiceImpl::follow(const FleetSettings& current) {
    if (current.problems != settings.problems) {
        for (const auto& problem : current.problems) {
            ZelLog(serviceLogger, ZelLogLevel::Error, ZEL_HERE, problem);
        }
    }
    settings = current;
    const bool isConfigured = !settings.access.endpoints.empty();
    std::unique_ptr<FleetFollower> replaced; // ended without the lock
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        follower.swap(replaced);
    }
    const bool wasFollowing = replaced != nullptr;
    replaced.reset();
    mailbox.extract();
    if (!isConfigured) {
        store.reset();
        if (wasFollowing) {
            ZelLog(serviceLogger, ZelLogLevel::Info, ZEL_HERE, "No endpoint is configured any more");
            configuration->removeConfigStore(storeName);
        }
        return;
    }
    ZelLog(serviceLogger, ZelLogLevel::Info, ZEL_HERE,
           "Following a cluster with " + std::to_string(settings.access.endpoints.size()) + " endpoint(s)");
    auto made = std::make_unique<FleetFollower>(settings, times,
                                                [this](ZelUnified::ConfigMap values) { receive(std::move(values)); });
    const KyrCoreUtils::LockGuard lock(mutex);
    follower = std::move(made);
}

void FleetServiceImpl::receive(ZelUnified::ConfigMap values) {
    if (mailbox.put(std::move(values))) {
        post("Fleet: update", &FleetServiceImpl::update);
    }
}

void FleetServiceImpl::update() {
    // Settings that arrive while the configuration is stopped are kept: the review after its start adds them.
    auto values = mailbox.extract();
    if (!values || !configuration || (store && store->equals(settings.priority, *values))) {
        return;
    }
    store = std::make_shared<FleetConfigStore>(settings.priority, std::move(*values));
    addStoreIfMissing();
}

void FleetServiceImpl::addStoreIfMissing() {
    if (store && factory->IsFeatureSetStarted(ZelUnified::configServiceId) &&
        configuration->getConfigStoreByName(storeName) != store) {
        configuration->addConfigStore(store);
    }
}

} // namespace fleet
