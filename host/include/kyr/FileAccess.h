#pragma once

#include <zel/HostExport.h>

#include <optional>
#include <string>

namespace KyrCoreUtils {

/// The owner of a file or a directory, and what other users may do with it. The owner and the administrators do not
/// count as other users; on a platform with access lists, neither do the user of this process and the system.
struct FileAccess {
    enum class Owner {
        Self, ///< The user of this process.
        /// Root; on a platform with access lists the administrators, the system and its installer. For a process of
        /// root, its files have the owner Self.
        Administrator,
        Other
    };

    Owner owner = Owner::Other;
    std::string ownerName; ///< The user's name, or the number of a user without a name.
    bool writableByEverybody = false;
    bool writableByOthers = false; ///< At least one other user may write it, for example as a member of its group.
    bool usableByOthers = false;   ///< At least one other user may read, write or execute it.

    /// Reads the access of the file at the path (UTF-8), following links. Returns nullopt if it does not exist or
    /// cannot be reached. If its access list cannot be read, it counts as a file of another user without a name that
    /// everybody may write. Any thread.
    LUMORA_HOST_API static std::optional<FileAccess> read(const std::string& path);
    /// Reads the permission bits of the file, following links. Returns nullopt if it does not exist, or on a platform
    /// whose files have no such bits. Any thread.
    LUMORA_HOST_API static std::optional<unsigned> readMode(const std::string& path);
    /// Allows the owner to read and write the file, and nothing to other users, following links. Returns 0 or an errno
    /// value; EPERM for a file of another user. Any thread.
    LUMORA_HOST_API static int restrictToOwner(const std::string& path) noexcept;
};

} // namespace KyrCoreUtils
