#pragma once

#include <zel/HostExport.h>

#include <optional>
#include <string>

namespace KyrCoreUtils {

/// Who owns a file or a directory, and whether everybody may change it.
struct FileAccess {
    enum class Owner {
        Self,          ///< The user of this process.
        Administrator, ///< Root; a process of root owns its files itself.
        Other
    };

    Owner owner = Owner::Other;
    std::string ownerName; ///< The user's name, or the number of a user without a name.
    bool writableByEverybody = false;

    /// Returns the access of what the path (UTF-8) names, links followed; nothing if it does not exist or cannot be
    /// inspected. Any thread.
    LUMORA_HOST_API static std::optional<FileAccess> of(const std::string& path);
};

} // namespace KyrCoreUtils
