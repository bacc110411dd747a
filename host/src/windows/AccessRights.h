#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <vector>

namespace zel::platform {

/// Access for the user of this process and the system only: what mode 0600 or 0700 is elsewhere.
class AccessRights {
public:
    enum class Kind { File, Directory };

    /// Returns attributes for a call that creates a file or a directory; null, which means the rights of the parent, if
    /// the system cannot say who the user is. Valid for the whole run.
    static SECURITY_ATTRIBUTES* forCreation(Kind kind) noexcept;
    /// Sets these rights on an existing file or directory. Returns 0 or an errno value.
    static int restrict(const std::filesystem::path& path, Kind kind) noexcept;
    /// Returns the id of the user of this process; empty if it is unknown.
    static std::vector<unsigned char> readUserId();
};

} // namespace zel::platform
