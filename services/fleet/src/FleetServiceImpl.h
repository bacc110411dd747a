#pragma once

#include "AdministratorValues.h"
#include "FleetConfigStore.h"
#include "FleetFollower.h"
#include "HeldCredential.h"
#include "SettingsMailbox.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <unified/FeatureSetAdapter.h>
#include <unified/UnifiedFactory.h>
#include <zel/BackgroundTimer.h>

#include <ConfigFeatureSet.h>
#include <ConfigStoreAddedObserver.h>
#include <FleetService.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace fleet {

/// The service of the plug-in: follows the cluster while its feature set is started, and keeps the store in the chain.
/// The start posts a task to the services thread; the task begins to follow, and isFollowing() returns false until it
/// has run.
///
/// After the chain has dropped or rebuilt stores (a stop, a refresh, a reset), it adds stores and announces each. The
/// service then reads its own settings again, follows another cluster if they have changed, and adds its store again if
/// it is missing. A start may add no store, so the watch asks regularly whether the store is missing, and a timer
/// repeats the review if the configuration was stopped or the watch could not begin. All of this runs on the services
/// thread.
///
/// If the endpoints were removed while the client was not running, the chain contains the store's cached copy. The
/// service removes it after a delay, because the client may add its bootstrap file, with endpoints, after the start.
class FleetServiceImpl final : public ZelUnified::FleetService,
                               public ZelUnified::FeatureSetAdapter,
                               public ZelUnified::ConfigStoreAddedObserver,
                               public zel::common::BackgroundTimerCallback,
                               public std::enable_shared_from_this<FleetServiceImpl> {
public:
    static constexpr std::int64_t reviewDelay = 30; ///< In seconds.

    /// Begins to follow a cluster; throws if it cannot.
    using FollowerMaker = std::function<std::unique_ptr<FleetFollower>(FleetSettings current, FleetTimes watchTimes,
                                                                       FleetWatch::Listener listener,
                                                                       FleetWatch::AttemptListener attemptListener)>;

    explicit FleetServiceImpl(
        std::shared_ptr<ZelUnified::UnifiedFactory> hostFactory, FleetTimes watchTimes = {},
        std::shared_ptr<zel::registry::Registry> administratorsRegistry = AdministratorValues::openRegistry(),
        FollowerMaker followerMaker = makeFollower);

    bool isFollowing() override;

    void StartFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    void StopFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    void Destroy() override;
    bool IsFeatureSetStarted(unsigned int id) override;
    bool IsFeatureSetProvisioned(unsigned int /*id*/) override { return true; }
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) override;

    void OnConfigStoreAdded(const std::string& addedName) override;
    void onTimer() override;

private:
    static std::unique_ptr<FleetFollower> makeFollower(FleetSettings current, FleetTimes watchTimes,
                                                       FleetWatch::Listener listener,
                                                       FleetWatch::AttemptListener attemptListener);
    void post(const std::string& name, void (FleetServiceImpl::*work)());
    /// Makes watch and store follow the settings. Logs a failure, and tries again after `reviewDelay`.
    void review(bool isDelayOver = false);
    void reviewNow() { review(); }
    void reviewAfterDelay() { review(true); }
    /// Returns true if the cached copy belongs to no cluster any more. The first call for a copy returns false and
    /// starts the delay.
    bool isCopyLeftOver(const FleetSettings& current, bool isDelayOver);
    FleetSettings readSettings();
    void reportProblems(const std::vector<std::string>& problems);
    /// Ends the watch, and follows the cluster of these settings. If there is none, removes the store of the ended
    /// watch; without a watch, only if `isToBeRemoved`.
    void follow(const FleetSettings& current, bool isToBeRemoved);
    /// Returns false if there was no watch.
    bool endWatch();
    void receive(ZelUnified::ConfigMap values);
    void update();
    void addStoreIfMissing();
    void removeStore();
    void stop();

    const std::shared_ptr<ZelUnified::UnifiedFactory> factory;
    const FleetTimes times;
    const FollowerMaker beginToFollow;
    SettingsMailbox mailbox;
    // Of the services thread only:
    std::shared_ptr<ZelUnified::ConfigFeatureSet> configuration; ///< Null while the feature set is stopped.
    AdministratorValues administratorValues;
    HeldCredential username;
    HeldCredential password;
    std::vector<std::string> reportedProblems;
    std::string reportedFailure;
    FleetSettings settings;                  ///< Of the watch; without endpoints if there is none.
    std::shared_ptr<FleetConfigStore> store; ///< Null until the first settings have arrived.
    zel::common::BackgroundTimer reviewTimer;
    bool isCopySeen = false; ///< There is a copy, and no endpoint, since the timer was started.

    KyrCoreUtils::AnnotatedMutex<> mutex;
    bool started LUMORA_GUARDED_BY(mutex) = false;
    std::unique_ptr<FleetFollower> follower LUMORA_GUARDED_BY(mutex);
};

} // namespace fleet
