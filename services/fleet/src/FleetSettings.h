#pragma once

#include "ClusterAccess.h"
#include "FleetScope.h"

#include <ConfigFeatureSet.h>
#include <FleetKeys.h>

#include <array>
#include <string>
#include <vector>

namespace fleet {

/// The settings of this service, from the configuration itself.
struct FleetSettings {
    static constexpr int defaultPriority = 45;
    /// The keys of FleetKeys.h.
    static constexpr std::array ownKeys{ZelUnified::FleetKeys::endpoints,
                                        ZelUnified::FleetKeys::groups,
                                        ZelUnified::FleetKeys::user,
                                        ZelUnified::FleetKeys::authority,
                                        ZelUnified::FleetKeys::clientCertificate,
                                        ZelUnified::FleetKeys::clientKey,
                                        ZelUnified::FleetKeys::plainHttpAllowed,
                                        ZelUnified::FleetKeys::priority,
                                        ZelUnified::FleetKeys::username,
                                        ZelUnified::FleetKeys::password};

    ClusterAccess access;
    std::vector<FleetScope> scopes; ///< The least specific one first.
    int priority = defaultPriority;
    std::vector<std::string> problems; ///< One line for each endpoint, group and user that is left out.

    bool operator==(const FleetSettings&) const = default;

    /// Reads the keys of FleetKeys.h. Leaves out endpoints, groups and users that cannot be used.
    static FleetSettings read(ZelUnified::ConfigFeatureSet& configuration);
    /// Returns true if the key is one of FleetKeys.h. The cluster cannot change how it is reached.
    static bool isOwnKey(const std::wstring& key);
    /// Marks the keys of the user and of the password as sensitive.
    static void markSensitiveKeys(ZelUnified::ConfigFeatureSet& configuration);
};

} // namespace fleet
