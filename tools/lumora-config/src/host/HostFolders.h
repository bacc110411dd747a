#pragma once

#include "ProfileUse.h"

#include <kyr/FileAccess.h>

#include <string>
#include <vector>

/// Checks the folders of the host: their owner, the plug-in and the defaults file in them.
namespace lumora_config {

/// Returns "" if a directory or a library with this access is trusted. Otherwise returns the reason: it belongs to
/// another user who is not root, or everybody may write it.
std::string findReasonForDistrust(const KyrCoreUtils::FileAccess& access);

/// Throws Failure (Environment) for the first existing directory or library that is not trusted.
void requireTrusted(const std::vector<std::string>& paths);

/// Returns the folders in which the build or the installation of the program has its plug-ins. They need not exist.
std::vector<std::string> listPluginFolders();

/// Returns the first of the folders that contains the library. Throws Failure (Environment) with the reason for each
/// folder if none does; its message calls the library a `kind`.
std::string findFolder(const std::vector<std::string>& folders, const std::string& library, const std::string& kind);

/// Returns the folder of the plug-in `configservice`: `requested` or, if that is empty, the folder of the build or
/// installation of the program. Throws Failure (Environment) if there is no plug-in.
std::string findPluginFolder(const std::string& requested);

/// Checks the defaults file of the installation on the disk. Throws Failure (Environment) if it is missing or
/// unreadable: the service would use an empty store instead, and every answer would be wrong.
void requireDefaultsFile(const std::string& resourcesDirectory);

/// Like requireDefaultsFile(), and also throws if the file is not XML.
void requireDefaultsInXml(const std::string& resourcesDirectory);

/// Checks that the service has accepted the defaults file; it moves a file aside that is not XML. Throws Failure
/// (Environment) in that case, with the new path if the file was moved on the disk.
void requireDefaultsAccepted(const std::string& resourcesDirectory, ProfileUse use);

} // namespace lumora_config
