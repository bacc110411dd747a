#pragma once

namespace lumora_config {

/// How a host uses its profile.
enum class ProfileUse {
    Read,  ///< Leaves the profile as it is: takes no lock, writes no log, keeps the changes of the service in memory.
    Change ///< Locks the profile and changes it.
};

} // namespace lumora_config
