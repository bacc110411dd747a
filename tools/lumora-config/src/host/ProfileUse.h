#pragma once

namespace lumora_config {

/// How a host uses its profile.
enum class ProfileUse {
    Read,  ///< Leaves the profile as it is: takes no lock, writes no log, keeps the changes of the service in memory.
    Change ///< Locks the profile and changes it.
};

/// How a host treats a defaults file that is missing, unreadable or not XML. The service uses an empty store instead.
enum class DefaultsUse {
    Required, ///< Refuses to open the profile, because every answer would be wrong.
    Optional  ///< Opens it, for a report about the problem.
};

} // namespace lumora_config
