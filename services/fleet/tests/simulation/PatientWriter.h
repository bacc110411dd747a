#pragma once

#include "EtcdCluster.h"
#include "EtcdSession.h"

#include <cstddef>
#include <string>

namespace fleet_test {

/// Writes settings for all clients, with a connection of its own. A member may be gone and no leader elected, so each
/// write is tried again for a while. Not thread-safe.
class PatientWriter {
public:
    /// Writers with different numbers begin with different members.
    explicit PatientWriter(const EtcdCluster& cluster, std::size_t number = 0);

    /// Throws fleet::EtcdError if the cluster does not accept the write.
    void put(const std::string& key, const std::string& value);

private:
    fleet::EtcdSession session;
};

} // namespace fleet_test
