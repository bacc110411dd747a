#pragma once

#include <registry/Registry.h>
#include <zel/FileLayer.h>

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
/// A recursive deletion rewrites each file once or twice, however many subkeys there are: after the deletion of a key
/// was refused because it has subkeys, what the same thread deletes below it while a key is open is written when that
/// key itself is deleted, or when the last open key is closed. If a file can't be written, that call returns
/// AccessDenied and the keys of the file are there again; a key that was to be closed is closed.
///
/// Where a root has no "SOFTWARE\Clients\Mail", `defaultMailClient` fills it in. The user's files are rewritten through
/// `files`, which must outlive the registry.
LUMORA_HOST_API std::shared_ptr<Registry>
makeFileRegistry(RegistryFolders folders, DefaultMailClient defaultMailClient = {},
                 zel::storage::FileLayer& files = zel::storage::FileLayer::platform());

} // namespace zel::registry
