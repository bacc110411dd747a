#pragma once

#include "AdministratorValues.h"
#include "FleetScope.h"

#include <FleetAdministration.h>
#include <WipedText.h>

#include <cstddef>
#include <string>
#include <vector>

namespace fleet {

/// The settings of this service, from the configuration itself.
struct FleetSettings {
    static constexpr int defaultPriority = 45;
    /// One transaction reads all scopes, and etcd allows 128 operations in each: everybody, the user and these.
    static constexpr std::size_t maxGroups = 126;

    ZelUnified::FleetAccess access;
    std::vector<FleetScope> scopes; ///< The least specific one first.
    int priority = defaultPriority;
    std::vector<std::string> problems; ///< One line for each endpoint, group and user that is left out.

    bool operator==(const FleetSettings&) const = default;

    /// Leaves out endpoints, groups and users that cannot be used.
    static FleetSettings read(const AdministratorValues& values, const ZelUnified::WipedText& username,
                              const ZelUnified::WipedText& password);
};

} // namespace fleet
