#include "HostFolders.h"

#include "output/Failure.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/Paths.h>
#include <kyr/ProcessUtils.h>

#include <ConfigKeys.h>

#include <filesystem>

namespace lumora_config {

using KyrCoreUtils::FileAccess;
using KyrCoreUtils::FileUtils;

namespace {

namespace fs = std::filesystem;

/// Returns why the plug-in is not in this folder.
std::string describeAbsence(const fs::path& folder) {
    std::error_code ignored;
    const auto status = fs::status(folder, ignored);
    const auto name = KyrCoreUtils::toText(folder.lexically_normal());
    if (!fs::exists(status)) {
        return "there is no folder " + name;
    }
    return fs::is_directory(status) ? "it is not in " + name : name + " is not a folder";
}

/// A host that only reads moves a damaged file in memory, which FileUtils::fileExists() would see.
bool existsOnDisk(const std::string& path) {
    std::error_code ignored;
    return fs::exists(KyrCoreUtils::toPath(path), ignored);
}

std::string getDefaultsPath(const std::string& resourcesDirectory) {
    return resourcesDirectory + FileUtils::FileSeparator() + std::string(ZelUnified::ConfigKeys::configDefaultsFile);
}

/// Returns the path to which the service moves a defaults file that is not XML.
std::string getQuarantinePath(const std::string& resourcesDirectory) {
    return resourcesDirectory + FileUtils::FileSeparator() + "lumora-config-defaults-backup.xml";
}

} // namespace

std::string findReasonForDistrust(const FileAccess& access) {
    if (access.owner == FileAccess::Owner::Other && access.ownerName.empty()) {
        return "its owner cannot be read";
    }
    if (access.owner == FileAccess::Owner::Other) {
        return "belongs to another user, " + access.ownerName;
    }
    return access.writableByEverybody ? "can be written by everybody" : "";
}

void requireTrusted(const std::vector<std::string>& paths) {
    for (const auto& path : paths) {
        const auto access = FileAccess::read(path);
        const auto reason = access ? findReasonForDistrust(*access) : std::string();
        if (!reason.empty()) {
            throw Failure(ExitCode::Environment, path + ": " + reason + "; --trust accepts it");
        }
    }
}

std::vector<std::string> listPluginFolders() {
    const auto program = KyrCoreUtils::toPath(KyrCoreUtils::ProcessUtils::getProgramFolder());
    std::vector<std::string> folders;
    for (const auto& folder :
         {program / ".." / "lib", program / ".." / LUMORA_PLUGIN_FOLDER, fs::path(LUMORA_INSTALLED_PLUGIN_FOLDER)}) {
        folders.push_back(KyrCoreUtils::toText(folder.lexically_normal()));
    }
    return folders;
}

std::string findFolder(const std::vector<std::string>& folders, const std::string& library, const std::string& kind) {
    std::string absences;
    for (const auto& folder : folders) {
        const auto path = KyrCoreUtils::toPath(folder);
        std::error_code ignored;
        if (fs::is_regular_file(path / library, ignored)) {
            return folder;
        }
        absences += (absences.empty() ? "" : ", ") + describeAbsence(path);
    }
    throw Failure(ExitCode::Environment, "no " + kind + ' ' + library + ": " + absences);
}

std::string findPluginFolder(const std::string& requested) {
    if (requested.empty()) {
        return findFolder(listPluginFolders(), LUMORA_PLUGIN_LIBRARY, "plug-in");
    }
    const auto folder = KyrCoreUtils::toPath(requested).lexically_normal();
    return findFolder({KyrCoreUtils::toText(folder)}, LUMORA_PLUGIN_LIBRARY, "plug-in");
}

void requireDefaultsFile(const std::string& resourcesDirectory) {
    const auto path = getDefaultsPath(resourcesDirectory);
    if (existsOnDisk(path)) {
        readWholeFile(path);
        return;
    }
    auto message = path + ": no defaults file";
    if (const auto quarantined = getQuarantinePath(resourcesDirectory); existsOnDisk(quarantined)) {
        message += "; one that was not XML is kept as " + quarantined;
    }
    throw Failure(ExitCode::Environment, message);
}

void requireDefaultsInXml(const std::string& resourcesDirectory) {
    requireDefaultsFile(resourcesDirectory);
    const auto path = getDefaultsPath(resourcesDirectory);
    requireXml(readWholeFile(path), path);
}

void requireDefaultsAccepted(const std::string& resourcesDirectory, ProfileUse use) {
    const auto path = getDefaultsPath(resourcesDirectory);
    if (!FileUtils::fileExists(path)) {
        const auto kept = use == ProfileUse::Change ? "; kept as " + getQuarantinePath(resourcesDirectory) : "";
        throw Failure(ExitCode::Environment, path + ": not XML" + kept);
    }
}

} // namespace lumora_config
