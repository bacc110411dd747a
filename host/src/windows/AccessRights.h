#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <vector>

namespace zel::platform {

/// Full access for the user of this process, the system and the administrators, none for others: what mode 0600 or 0700
/// is elsewhere.
class AccessRights {
public:
    enum class Kind { File, Directory };

    /// Returns attributes for a call that creates a file or a directory; null, which means the rights of the parent, if
    /// the system cannot say who the user is. Valid for the whole run.
    static SECURITY_ATTRIBUTES* forCreation(Kind kind) noexcept;
    /// Set these rights on an existing file or directory, following links. What a directory contains keeps its rights.
    /// `file` must be open for READ_CONTROL and WRITE_DAC. Return 0 or an errno value; EPERM, with nothing changed, if
    /// another user owns it.
    static int restrict(const std::filesystem::path& path, Kind kind) noexcept;
    static int restrict(HANDLE file, Kind kind) noexcept;
    /// Returns the id of the user of this process; empty if it is unknown.
    static std::vector<unsigned char> readUserId();
};

} // namespace zel::platform
