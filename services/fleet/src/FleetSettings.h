#pragma once

#include "AdministratorValues.h"
#include "ClusterAccess.h"
#include "FleetScope.h"

#include <ConfigFeatureSet.h>
#include <ConfigKeys.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace fleet {

/// The settings of this service, from the configuration itself.
struct FleetSettings {
    static constexpr int defaultPriority = 45;
    /// One transaction reads all scopes, and etcd allows 128 operations in each: everybody, the user and these.
    static constexpr std::size_t maxGroups = 126;
    /// The service's own keys that only an administrator sets.
    static constexpr std::array administratorsKeys{ZelUnified::ConfigKeys::fleetEndpoints,
                                                   ZelUnified::ConfigKeys::fleetGroups,
                                                   ZelUnified::ConfigKeys::fleetUser,
                                                   ZelUnified::ConfigKeys::fleetCertificateAuthority,
                                                   ZelUnified::ConfigKeys::fleetClientCertificate,
                                                   ZelUnified::ConfigKeys::fleetClientKey,
                                                   ZelUnified::ConfigKeys::fleetPlainHttpAllowed,
                                                   ZelUnified::ConfigKeys::fleetPriority};

    /// Those that any store may contain.
    static constexpr std::array credentialKeys{ZelUnified::ConfigKeys::fleetConnectionUsername,
                                               ZelUnified::ConfigKeys::fleetConnectionPassword};

    ClusterAccess access;           ///< Without user and password after read().
    std::vector<FleetScope> scopes; ///< The least specific one first.
    int priority = defaultPriority;
    std::vector<std::string> problems; ///< One line for each endpoint, group and user that is left out.

    bool operator==(const FleetSettings&) const = default;

    /// Leaves out endpoints, groups and users that cannot be used.
    static FleetSettings read(const AdministratorValues& values);
    static bool isAdministratorsKey(std::wstring_view key);
    /// Returns true if the key configures this service. The cluster cannot change how it is reached.
    static bool isOwnKey(std::wstring_view key);
};

} // namespace fleet
