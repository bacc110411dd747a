#include "DefaultsFile.h"

#include "output/Failure.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>

#include <ConfigKeys.h>

namespace lumora_config {

using KyrCoreUtils::FileUtils;

DefaultsFile::DefaultsFile(const std::string& resourcesDirectory)
    : path(resourcesDirectory + FileUtils::FileSeparator() + std::string(ZelUnified::ConfigKeys::configDefaultsFile)),
      quarantinePath(resourcesDirectory + FileUtils::FileSeparator() + "lumora-config-defaults-backup.xml") {}

void DefaultsFile::requireReadable() const {
    if (FileUtils::fileExists(path)) {
        readWholeFile(path);
        return;
    }
    auto message = path + ": no defaults file";
    if (FileUtils::fileExists(quarantinePath)) {
        message += "; one that was not XML is kept as " + quarantinePath;
    }
    throw Failure(ExitCode::Environment, message);
}

void DefaultsFile::requireAccepted() const {
    if (!FileUtils::fileExists(path)) {
        throw Failure(ExitCode::Environment, path + ": not XML; kept as " + quarantinePath);
    }
}

} // namespace lumora_config
