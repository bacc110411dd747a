#pragma once

#include <registry/Registry.h>

#include <functional>
#include <memory>
#include <string>

namespace zel::registry {

/// The folders of a registry that is made of files in the administrators' text format.
struct RegistryFolders {
    /// Holds "HKEY_CURRENT_USER" and "HKEY_LOCAL_MACHINE", folders of ".reg" files. Never written.
    std::string administrator;
    /// Files of the current user's root, laid over the administrator's. Empty: getUserRegistryFolder().
    std::string user;
};

/// The name of the default mail client, empty when none is known. Asked whenever the files are looked at.
using DefaultMailClient = std::function<std::wstring(HKEY root)>;

/// The folder "registry" of the application data; "" when that folder is not known.
LUMORA_HOST_API std::string getUserRegistryFolder();

/// The administrator's folder; "" on a platform with a registry of its own.
LUMORA_HOST_API std::string getAdministratorRegistryFolder();

/// A registry over these folders. Files are taken in the order of their names, a later one wins. They are looked at
/// when a key is opened or deleted while no other is open, so that a walk through the tree sees one state of it.
///
/// Deleting a key takes it out of the user's files. A key that stands in an administrator's file can't be deleted: what
/// the user's files say at and below it is dropped, so that the administrator's word stands bare, and the answer is
/// AccessDenied.
///
/// Where a root has no "SOFTWARE\Clients\Mail", `defaultMailClient` fills it in.
LUMORA_HOST_API std::shared_ptr<Registry> makeFileRegistry(RegistryFolders folders,
                                                           DefaultMailClient defaultMailClient = {});

} // namespace zel::registry
