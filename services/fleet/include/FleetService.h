#pragma once

#include <unified/FeatureSet.h>

#include <FleetServiceExport.h>

namespace ZelUnified {

/// Adds the settings that the administrators of an organisation keep in an etcd cluster, and each change of them, as
/// the store "FleetConfigStore". docs/fleet.md describes the keys in the cluster and the keys that configure this
/// service. Does nothing while no endpoint is configured.
///
/// A host loads it by this type like every service, and starts it with UnifiedFactory::StartFeatureSet() after the
/// configuration service. The start posts a task to the services thread; the task begins to follow the cluster. Stop
/// the configuration service only with UnifiedFactory::StopFeatureSet(), which stops it on the services thread. A stop
/// on another thread holds the configuration's lock while it waits for that thread, where this service may be waiting
/// for the lock. Refresh it on the services thread: during a refresh on another thread the cached copy may replace the
/// store until the services thread has added the store again. Any thread.
class FLEET_SERVICE_API FleetService : public FeatureSet {
public:
    /// Lower than the number of the configuration service, so that the host stops and destroys this service first.
    static constexpr unsigned int fleetServiceId = 1298;
    /// The name of the store.
    static constexpr const char* storeName = "FleetConfigStore";

    /// Returns true while the service follows a cluster, reachable or not. Returns false until the task that the start
    /// has posted has run.
    virtual bool isFollowing() = 0;
};

} // namespace ZelUnified
