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

#include <ConfigFeatureSet.h>
#include <ConfigStoreAddedObserver.h>
#include <FleetService.h>

#include <memory>
#include <string>
#include <vector>

namespace fleet {

/// The service of the plug-in: follows the cluster while its feature set is started, and keeps the store in the chain.
///
/// After the chain has dropped or rebuilt stores (a stop, a refresh, a reset), it adds stores and announces each. The
/// service then reads its own settings again, follows another cluster if they have changed, and adds its store again if
/// it is missing. A start may add no store, so the watch asks regularly whether the store is missing. All of this runs
/// on the services thread.
class FleetServiceImpl : public ZelUnified::FleetService,
                         public ZelUnified::FeatureSetAdapter,
                         public ZelUnified::ConfigStoreAddedObserver,
                         public std::enable_shared_from_this<FleetServiceImpl> {
public:
    explicit FleetServiceImpl(
        std::shared_ptr<ZelUnified::UnifiedFactory> hostFactory, FleetTimes watchTimes = {},
        std::shared_ptr<zel::registry::Registry> administratorsRegistry = AdministratorValues::openRegistry());

    bool isFollowing() override;

    void StartFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    void StopFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    void Destroy() override;
    bool IsFeatureSetStarted(unsigned int id) override;
    bool IsFeatureSetProvisioned(unsigned int /*id*/) override { return true; }
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) override;

    void OnConfigStoreAdded(const std::string& addedName) override;

protected:
    /// A test overrides it.
    virtual std::unique_ptr<FleetFollower> makeFollower(const FleetSettings& current);

private:
    void post(const std::string& name, void (FleetServiceImpl::*work)());
    /// Makes watch and store follow the settings. Logs a failure; the next review tries again.
    void review();
    FleetSettings readSettings();
    void reportProblems(const std::vector<std::string>& problems);
    void follow(const FleetSettings& current);
    /// Returns false if there was no watch.
    bool endWatch();
    void receive(ZelUnified::ConfigMap values);
    void update();
    void addStoreIfMissing();
    void stop();

    const std::shared_ptr<ZelUnified::UnifiedFactory> factory;
    const FleetTimes times;
    SettingsMailbox mailbox;
    // Of the services thread only:
    std::shared_ptr<ZelUnified::ConfigFeatureSet> configuration; ///< Null while the feature set is stopped.
    AdministratorValues administratorValues;
    HeldCredential username;
    HeldCredential password;
    std::vector<std::string> reportedProblems;
    FleetSettings settings;                  ///< Of the watch; without endpoints if there is none.
    std::shared_ptr<FleetConfigStore> store; ///< Null until the first settings have arrived.

    KyrCoreUtils::AnnotatedMutex<> mutex;
    bool started LUMORA_GUARDED_BY(mutex) = false;
    std::unique_ptr<FleetFollower> follower LUMORA_GUARDED_BY(mutex);
};

} // namespace fleet
