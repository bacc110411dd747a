#pragma once

#include "Arrivals.h"
#include "EtcdCluster.h"
#include "SimulatedClient.h"

#include <unified/UnifiedFactoryImpl.h>

#include <TemporaryProfile.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace fleet_test {

/// Clients of one cluster in this process. They share a profile and the two dispatchers of one host; each has its own
/// chain, records, connection, watch and thread for the connection.
class SimulatedFleet {
public:
    /// Returns after every client has read the cluster: they have then received the value of the barrier's key.
    SimulatedFleet(std::size_t count, EtcdCluster& etcdCluster);
    ~SimulatedFleet();
    SimulatedFleet(const SimulatedFleet&) = delete;
    SimulatedFleet& operator=(const SimulatedFleet&) = delete;

    std::size_t size() const { return clients.size(); }
    /// Calls `work` for each client, with its number, on the services thread.
    void forEach(const std::function<void(std::size_t, SimulatedClient&)>& work) const;
    /// Writes to the barrier's key and waits until every client has received it: each then has every value that was
    /// written before, and the calls of its observers for them are over. Throws if a client does not receive it.
    void passBarrier();

private:
    void onServices(const std::function<void()>& work) const;
    void addClients(std::size_t count);
    /// Throws unless each client has begun to follow the cluster.
    void checkFollowing() const;
    /// Throws unless each client follows its own user's settings.
    void checkUsers() const;

    EtcdCluster& cluster;
    const testing_host::TemporaryProfile profile;
    const std::shared_ptr<ZelUnified::UnifiedFactoryImpl> host;
    Arrivals barrier;
    std::size_t barriers = 0;
    std::vector<std::unique_ptr<SimulatedClient>> clients;
};

} // namespace fleet_test
