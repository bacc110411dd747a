#pragma once

#include "FleetServiceImpl.h"
#include "SimulatedFactory.h"
#include "ValueObserver.h"

#include <ConfigService.h>

#include <memory>
#include <string>
#include <vector>

namespace fleet_test {

/// One client: the configuration service and the fleet service, both whole, with a connection and a watch of its own,
/// and its observers. Constructed, used and destroyed on the services thread of the host.
class SimulatedClient {
public:
    /// The settings of the fleet are in the defaults file of the profile.
    explicit SimulatedClient(const std::shared_ptr<ZelUnified::UnifiedFactory>& host);
    ~SimulatedClient();
    SimulatedClient(const SimulatedClient&) = delete;
    SimulatedClient& operator=(const SimulatedClient&) = delete;

    /// Adds an observer to the record of the key. The client keeps it.
    void observe(const std::wstring& key, ValueObserver::Listener listener);
    /// Returns false while the task that begins to follow the cluster has not run.
    bool isFollowing() const { return service->isFollowing(); }
    std::wstring getValue(const std::wstring& key) const { return records->getConfig(key)->getValue(); }
    /// Returns the observers in the order in which they were added.
    const std::vector<std::shared_ptr<ValueObserver>>& getObservers() const { return observers; }

private:
    const std::shared_ptr<SimulatedFactory> factory;
    std::shared_ptr<ZelUnified::ConfigService> records;
    std::shared_ptr<fleet::FleetServiceImpl> service;
    std::vector<std::shared_ptr<ValueObserver>> observers;
};

} // namespace fleet_test
