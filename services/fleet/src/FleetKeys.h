#pragma once

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace fleet {

/// The configuration's keys of this service.
struct FleetKeys {
    /// Those that only an administrator sets.
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

    static bool isAdministratorsKey(std::wstring_view key) { return contains(administratorsKeys, key); }
    /// Returns true if the key configures this service. The cluster cannot change how it is reached.
    static bool isOwnKey(std::wstring_view key) { return isAdministratorsKey(key) || contains(credentialKeys, key); }

private:
    template <class Keys>
    static bool contains(const Keys& keys, std::wstring_view key) {
        return std::ranges::any_of(
            keys, [&](std::wstring_view own) { return KyrCoreUtils::caseInsensitiveStringEquals(own, key); });
    }
};

} // namespace fleet
