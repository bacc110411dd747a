#pragma once

#include "EtcdSession.h"
#include "FleetFollower.h"
#include "FleetScope.h"

#include <FleetAdministration.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fleet {

/// Administers a cluster with an EtcdSession, and watches it as a client does.
class FleetAdministrationImpl final : public ZelUnified::FleetAdministration {
public:
    explicit FleetAdministrationImpl(const ZelUnified::FleetAccess& clusterAccess);

    void put(const ZelUnified::FleetPair& pair) override;
    bool remove(const ZelUnified::FleetAudience& audience, const std::string& key) override;
    std::optional<std::string> findKey(const ZelUnified::FleetAudience& audience, const std::string& key) override;
    std::optional<ZelUnified::FleetPair> find(const ZelUnified::FleetAudience& audience,
                                              const std::string& key) override;
    std::vector<ZelUnified::FleetPair> list(const std::vector<ZelUnified::FleetAudience>& audiences) override;
    void watch(const std::vector<ZelUnified::FleetAudience>& audiences, Listener listener) override;
    void endWatch() override { follower.reset(); }

private:
    /// Throws EtcdError if the name cannot be that of a group or user.
    static FleetScope toScope(const ZelUnified::FleetAudience& audience);

    const ZelUnified::FleetAccess access;
    EtcdSession session;
    std::unique_ptr<FleetFollower> follower;
};

} // namespace fleet
