#pragma once

#include <kyr/FileAccess.h>

#include <windows.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

namespace zel::platform {

/// The owner and the access list of a file or a directory.
class FileSecurity {
public:
    /// Read them from the path, following links, or from an open file. Return nullopt if they cannot be read. `file`
    /// must be open for READ_CONTROL.
    static std::optional<FileSecurity> read(const std::filesystem::path& path);
    static std::optional<FileSecurity> read(HANDLE file);
    /// Takes ownership of a descriptor that the system allocated with LocalAlloc. Returns nullopt if it has no owner.
    LUMORA_HOST_API static std::optional<FileSecurity> take(PSECURITY_DESCRIPTOR allocated);

    /// Returns what the list allows. An entry that denies rights is not subtracted, so a file can look more open than
    /// it is, never less.
    LUMORA_HOST_API KyrCoreUtils::FileAccess describe() const;

private:
    using Descriptor = std::unique_ptr<void, decltype(&::LocalFree)>;

    FileSecurity(Descriptor allocated, PSID ownerId, PACL accessList)
        : descriptor(std::move(allocated)), owner(ownerId), list(accessList) {}

    /// Returns true for the owner, the user of this process, the system and the administrators.
    bool isTrusted(PSID user) const;

    Descriptor descriptor; ///< Contains the owner and the list.
    PSID owner;
    PACL list; ///< Null if everything is allowed to everybody.
};

} // namespace zel::platform
