#pragma once

#include <zel/HostExport.h>

#include <optional>
#include <string>

namespace KyrCoreUtils {

/// The owner of a file or a directory, and whether every user may change it.
struct FileAccess {
    enum class Owner {
        Self,          ///< The user of this process.
        Administrator, ///< Root. For a process of root, its files have the owner Self.
        Other
    };

    Owner owner = Owner::Other;
    std::string ownerName; ///< The user's name, or the number of a user without a name.
    bool writableByEverybody = false;

    /// Reads the access of the file at the path (UTF-8), following links. Returns nullopt if it does not exist or
    /// cannot be inspected. Any thread.
    LUMORA_HOST_API static std::optional<FileAccess> read(const std::string& path);
    /// Reads the permission bits of the file, following links. Returns nullopt if it does not exist, or on a platform
    /// whose files have no such bits. Any thread.
    LUMORA_HOST_API static std::optional<unsigned> readMode(const std::string& path);
};

} // namespace KyrCoreUtils
