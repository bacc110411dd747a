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
    /// Reads them, following links. Returns nullopt if there is no such file.
    static std::optional<FileSecurity> read(const std::filesystem::path& path);
    /// Reads them from an open file. `file` must be open for READ_CONTROL.
    static FileSecurity read(HANDLE file);
    /// Takes ownership of a descriptor that the system allocated with LocalAlloc. Null means that nothing is known.
    LUMORA_HOST_API static FileSecurity take(PSECURITY_DESCRIPTOR allocated);

    /// Returns what the list allows. An entry that denies rights is not subtracted, so a file can look more open than
    /// it is, never less. If the owner or the list is unknown, another user owns the file and everybody may do
    /// everything.
    LUMORA_HOST_API KyrCoreUtils::FileAccess describe() const;
    /// Returns true if another user owns the file, who can therefore change the list, or if the owner is unknown.
    /// Returns false on a file system without owners.
    LUMORA_HOST_API bool belongsToAnotherUser() const;

private:
    using Descriptor = std::unique_ptr<void, decltype(&::LocalFree)>;

    FileSecurity(Descriptor allocated, PSID ownerId, PACL accessList)
        : descriptor(std::move(allocated)), owner(ownerId), list(accessList) {}

    /// Returns true for the owner, the user of this process, the system and the administrators.
    bool isTrusted(PSID user) const;

    Descriptor descriptor; ///< Contains the owner and the list.
    PSID owner;            ///< Null if the owner or the list is unknown.
    PACL list;             ///< Null if everything is allowed to everybody.
};

} // namespace zel::platform
