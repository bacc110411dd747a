#pragma once

#include <registry/Registry.h>
#include <zel/FileLayer.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zel::registry {

/// The folders of a registry that consists of files in the administrators' text format.
struct RegistryFolders {
    /// Contains the folders "HKEY_CURRENT_USER" and "HKEY_LOCAL_MACHINE" with ".reg" files. Never written.
    std::string administrator{};
    /// Contains the files of the current user's root; they override the administrator's. If empty,
    /// getUserRegistryFolder().
    std::string user{};
    bool readsUserFiles = true; ///< If false, only the administrator's files are read.
};

/// Returns the name of the default mail client, empty if it is unknown. Called each time the files are checked.
using DefaultMailClient = std::function<std::wstring(HKEY root)>;

/// Returns the folder "registry" in the application data; "" if the application data folder is unknown.
LUMORA_HOST_API std::string getUserRegistryFolder();

/// Returns the administrator's folder; "" on a platform that has a registry.
LUMORA_HOST_API std::string getAdministratorRegistryFolder();

/// Returns the files of the platform's registry that contain `root`, in the order in which they are applied. Returns an
/// empty list on a platform whose registry does not consist of files.
LUMORA_HOST_API std::vector<std::string> findRegistryFiles(HKEY root);

/// Returns a registry over these folders. Files are read in the order of their names; a later file overrides an earlier
/// one. The files are checked for changes when a key is opened or deleted while no other key is open, so a traversal of
/// the tree sees one state of it.
///
/// Deleting a key removes it from the user's files. A key in an administrator's file cannot be deleted: the call
/// removes the user's entries at and below the key, so that only the administrator's values remain, and returns
/// AccessDenied.
///
/// A recursive deletion rewrites each file once or twice, regardless of the number of subkeys. After the deletion of a
/// key fails because the key has subkeys, deletions below it by the same thread while a key is open are written when
/// that key itself is deleted or when the last open key is closed. If a file cannot be written, that call returns
/// AccessDenied and the keys of the file exist again; a key passed to RegCloseKey() is closed anyway.
///
/// If a root has no "SOFTWARE\Clients\Mail", `defaultMailClient` provides its value. The user's files are rewritten
/// through `files`, which must outlive the registry; null means the layer of the process at the time of the write.
LUMORA_HOST_API std::shared_ptr<Registry> makeFileRegistry(RegistryFolders folders,
                                                           DefaultMailClient defaultMailClient = {},
                                                           zel::storage::FileLayer* files = nullptr);

} // namespace zel::registry
