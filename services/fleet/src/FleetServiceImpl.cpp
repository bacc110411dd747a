#include "FleetServiceImpl.h"

#include "FleetKeys.h"

#include <kyr/FunctionTask.h>
#include <zel/ZelLog.h>

#include <ConfigKeys.h>
#include <ConfigServiceIds.h>

#include <exception>
#include <utility>

namespace fleet {

namespace {

ZelLogger& serviceLogger = ZelLogger_getLogger("Fleet-Service");

} // namespace

FleetServiceImpl::FleetServiceImpl(std::shared_ptr<ZelUnified::UnifiedFactory> hostFactory, FleetTimes watchTimes,
                                   std::shared_ptr<zel::registry::Registry> administratorsRegistry,
                                   FollowerMaker followerMaker)
    : factory(std::move(hostFactory)),
      times(watchTimes),
      beginToFollow(std::move(followerMaker)),
      administratorValues(std::move(administratorsRegistry)) {}

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
    for (const auto key : FleetKeys::credentialKeys) {
        configuration->setKeySensitive(std::wstring(key));
    }
    configuration->registerConfigStoreAddedObserver(shared_from_this());
    // In a task of its own: the cached copy is in force meanwhile, so the start of the client need not wait.
    post("Fleet: review", &FleetServiceImpl::reviewAfterAddition);
}

void FleetServiceImpl::StopFeatureSet(unsigned int /*id*/, std::shared_ptr<ZelUnified::ServiceEventList> /*events*/) {
    stop();
}

void FleetServiceImpl::Destroy() {
    stop();
}

void FleetServiceImpl::stop() {
    reviewTimer.stop();
    isCopySeen = false;
    if (configuration) {
        configuration->unregisterConfigStoreAddedObserver(shared_from_this());
        configuration.reset();
    }
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        started = false;
    }
    endWatch();
}

bool FleetServiceImpl::endWatch() {
    std::unique_ptr<FleetFollower> ended; // without the lock
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        follower.swap(ended);
    }
    const bool wasFollowing = ended != nullptr;
    ended.reset();
    mailbox.extract();
    settings = {};
    return wasFollowing;
}

bool FleetServiceImpl::IsFeatureSetStarted(unsigned int /*id*/) {
    const KyrCoreUtils::LockGuard lock(mutex);
    return started;
}

std::vector<unsigned int> FleetServiceImpl::GetFeatureSetDependencies(unsigned int /*id*/) {
    return {ZelUnified::configServiceId};
}

void FleetServiceImpl::OnConfigStoreAdded(const std::string& /*addedName*/) {
    // Also for a store of this name: it may be a cached copy.
    post("Fleet: review", &FleetServiceImpl::reviewAfterAddition);
}

void FleetServiceImpl::post(const std::string& name, void (FleetServiceImpl::*work)()) {
    const auto task = [weak = weak_from_this(), work] {
        if (const auto self = weak.lock()) {
            ((*self).*work)();
        }
    };
    factory->getServicesDispatcher()->enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(task, name), false);
}

void FleetServiceImpl::review(bool isDelayOver) {
    if (!configuration) {
        return;
    }
    if (!factory->IsFeatureSetStarted(ZelUnified::configServiceId)) {
        // It accepts no store now, and its start may announce none.
        isCopySeen = false;
        reviewTimer.start(weak_from_this(), reviewDelay);
        return;
    }
    try {
        const auto current = readSettings();
        reportProblems(current.problems);
        const bool isLeftOver = isCopyLeftOver(current, isDelayOver);
        const bool isToBeRemoved = isLeftOver || (store != nullptr && current.access.endpoints.empty());
        if (current != settings || isToBeRemoved) {
            follow(current, isToBeRemoved);
        }
        addStoreIfMissing();
        reportedFailure.clear();
    } catch (const std::exception& failure) {
        if (std::exchange(reportedFailure, failure.what()) != failure.what()) {
            ZelLog(serviceLogger, ZelLogLevel::Error, ZEL_HERE,
                   "The fleet's settings cannot be followed: " + reportedFailure);
        }
        reviewTimer.start(weak_from_this(), reviewDelay);
    }
}

void FleetServiceImpl::onTimer() {
    post("Fleet: review", &FleetServiceImpl::reviewAfterDelay);
}

bool FleetServiceImpl::isCopyLeftOver(const FleetSettings& current, bool isDelayOver) {
    const bool isCopy = store == nullptr && configuration->getConfigStoreByName(storeName) != nullptr;
    // Without the store of the policy, endpoints may be missing until the next refresh only.
    if (!isCopy || !current.access.endpoints.empty() ||
        !configuration->getConfigStoreByName(std::string(ZelUnified::ConfigKeys::registryConfigStore))) {
        isCopySeen = false;
        return false;
    }
    if (isCopySeen) {
        return isDelayOver;
    }
    isCopySeen = true;
    reviewTimer.start(weak_from_this(), reviewDelay);
    return false;
}

FleetSettings FleetServiceImpl::readSettings() {
    administratorValues.update(*configuration);
    username.update(*configuration, ZelUnified::ConfigKeys::fleetConnectionUsername);
    password.update(*configuration, ZelUnified::ConfigKeys::fleetConnectionPassword);
    return FleetSettings::read(administratorValues, username.getText(), password.getText());
}

void FleetServiceImpl::reportProblems(const std::vector<std::string>& problems) {
    if (problems == reportedProblems) {
        return;
    }
    reportedProblems = problems;
    for (const auto& problem : problems) {
        ZelLog(serviceLogger, ZelLogLevel::Error, ZEL_HERE, problem);
    }
}

void FleetServiceImpl::follow(const FleetSettings& current, bool isToBeRemoved) {
    const bool wasFollowing = endWatch();
    if (current.access.endpoints.empty()) {
        if (isToBeRemoved || wasFollowing) {
            ZelLog(serviceLogger, ZelLogLevel::Info, ZEL_HERE, "No endpoint is configured any more");
            removeStore();
        }
        settings = current;
        return;
    }
    auto made = beginToFollow(
        current, times, [this](ZelUnified::ConfigMap values) { receive(std::move(values)); },
        [this] { post("Fleet: update", &FleetServiceImpl::update); });
    settings = current; // not before the watch exists: without one, the next review tries again
    ZelLog(serviceLogger, ZelLogLevel::Info, ZEL_HERE,
           "Following a cluster with " + std::to_string(current.access.endpoints.size()) + " endpoint(s)");
    const KyrCoreUtils::LockGuard lock(mutex);
    follower = std::move(made);
}

void FleetServiceImpl::removeStore() {
    // The removal of a live store removes its copy too, but that of a copy leaves the file behind. The store is empty,
    // so that its values are not in force again for a moment.
    store = std::make_shared<FleetConfigStore>(FleetSettings::defaultPriority, ZelUnified::ConfigMap());
    addStoreIfMissing();
    configuration->removeConfigStore(storeName);
    store.reset();
}

std::unique_ptr<FleetFollower> FleetServiceImpl::makeFollower(FleetSettings current, FleetTimes watchTimes,
                                                              FleetWatch::Listener listener,
                                                              FleetWatch::AttemptListener attemptListener) {
    return std::make_unique<FleetFollower>(std::move(current), watchTimes, std::move(listener),
                                           std::move(attemptListener));
}

void FleetServiceImpl::receive(ZelUnified::ConfigMap values) {
    if (mailbox.put(std::move(values))) {
        post("Fleet: update", &FleetServiceImpl::update);
    }
}

void FleetServiceImpl::update() {
    // Settings that arrive while the configuration is stopped are kept, and added after its start.
    auto values = mailbox.extract();
    if (!configuration) {
        return;
    }
    if (values && !(store && store->equals(settings.priority, *values))) {
        store = std::make_shared<FleetConfigStore>(settings.priority, std::move(*values));
    }
    addStoreIfMissing();
}

void FleetServiceImpl::addStoreIfMissing() {
    if (store && factory->IsFeatureSetStarted(ZelUnified::configServiceId) &&
        configuration->getConfigStoreByName(storeName) != store) {
        configuration->addConfigStore(store);
    }
}

} // namespace fleet
