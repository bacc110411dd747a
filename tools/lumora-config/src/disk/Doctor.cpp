#include "Doctor.h"

#include "SettingsOnDisk.h"
#include "host/HostFolders.h"
#include "output/Failure.h"
#include "stores/PolicyFile.h"

#include <kyr/FileAccess.h>
#include <kyr/FileUtils.h>
#include <kyr/Paths.h>
#include <registry/RegistryFiles.h>
#include <unified/ProfileLock.h>
#include <zel/EncryptFileUtils.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <sstream>

namespace lumora_config {

using KyrCoreUtils::FileAccess;
using KyrCoreUtils::FileUtils;
using zel::storage::ReadResult;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

std::string describeMode(unsigned mode) {
    std::ostringstream text;
    text << std::oct << std::setw(4) << std::setfill('0') << (mode & 07777U);
    return text.str();
}

/// Asks the disk, which a host that only reads does not change.
bool existsOnDisk(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(KyrCoreUtils::toPath(path), ignored);
}

bool isDirectory(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(KyrCoreUtils::toPath(path), ignored);
}

std::string describeFile(const zel::storage::ProtectedFileHealth& file) {
    auto text = describe(file.state);
    if (file.hasFailedWrite()) {
        text += ", the last write failed: " + file.lastWrite->cause;
    }
    return file.pending ? text + ", a change is not written yet" : text;
}

/// An item names its path already.
std::string withoutPath(const Failure& failure, const std::string& path) {
    const std::string message = failure.what();
    return message.starts_with(path + ": ") ? message.substr(path.size() + 2) : message;
}

std::string describePolicy(const PolicyImport& policy) {
    constexpr std::size_t mostMessages = 20;
    auto text = std::to_string(policy.taken.size()) + " keys";
    const auto messages = policy.listMessages();
    std::size_t count = 0;
    for (const auto& [line, message] : messages) {
        if (count++ == mostMessages) {
            return text + "; and " + std::to_string(messages.size() - mostMessages) + " more";
        }
        text += "; line " + std::to_string(line) + ": " + message;
    }
    return text;
}

constexpr std::size_t maxListed = 3;

std::vector<std::string> describeProblems(const std::string& directory) {
    std::vector<std::string> problems;
    for (const auto& file : examineProtectedFiles(directory)) {
        if (file.state != ReadResult::Ok && file.state != ReadResult::Absent) {
            problems.push_back(FileUtils::getFileName(file.path) + " is " + describe(file.state));
        }
    }
    for (const auto& file : zel::storage::EncryptFileUtils::listMovedAside(directory)) {
        problems.push_back(FileUtils::getFileName(file.original) + " was moved aside as " +
                           FileUtils::getFileName(file.keptAs) + " (" + describe(file.state) + ")");
    }
    return problems;
}

} // namespace

Doctor::Doctor(Lock lockState, Owners ownerForm)
    : lock(lockState), owners(ownerForm), configDirectory(FileUtils::getConfigDirectory()) {}

HealthReport Doctor::examine() {
    report = {};
    examineDirectories();
    examineLock();
    examineDefaults();
    if (!configDirectory.empty()) {
        examineProtectedFiles();
        examineMovedAside();
    }
    examineKeys();
    examinePolicies(zel::registry::getUserRegistryFolder());
    if (const auto folder = zel::registry::getAdministratorRegistryFolder(); !folder.empty()) {
        examinePolicies(folder + FileUtils::FileSeparator() + "HKEY_CURRENT_USER");
    }
    return report;
}

void Doctor::addWrites(HealthReport& report, const std::string& path, const std::string& state) {
    const auto found = std::ranges::find_if(
        report.items, [&](const HealthItem& item) { return item.area == "file" && item.path == path; });
    if (found == report.items.end()) {
        report.items.push_back({"file", path, "absent, " + state, true});
        return;
    }
    found->state += "; " + state;
    found->needsAttention = true;
}

void Doctor::examineDirectories() {
    if (configDirectory.empty()) {
        add("directory", "configuration", "not usable: a reset empties it, so it must be a folder of its own", true);
    }
    for (const auto& directory : {configDirectory, FileUtils::getUserLocalAppDir(), FileUtils::getStateDirectory(),
                                  FileUtils::getResourcesDirectory()}) {
        if (directory.empty()) {
            continue;
        }
        if (!existsOnDisk(directory)) {
            add("directory", directory, "absent", false);
            continue;
        }
        const bool isGood = isDirectory(directory);
        addExisting("directory", directory, isGood ? "good" : "not a directory", !isGood,
                    &FileAccess::writableByOthers);
    }
}

void Doctor::examineLock() {
    if (lock == Lock::Held || !isDirectory(configDirectory)) {
        add("lock", configDirectory, lock == Lock::Held ? "held by this process" : "free", false);
        return;
    }
    const auto problem = ZelUnified::ProfileLock::findProblem(configDirectory, FileUtils::getStateDirectory());
    const bool isFree = problem.text.empty();
    add("lock", configDirectory, isFree ? "free" : problem.text, !isFree && !problem.isInUse);
}

void Doctor::examineDefaults() {
    const auto path =
        FileUtils::getResourcesDirectory() + FileUtils::FileSeparator() + std::string(ConfigKeys::configDefaultsFile);
    try {
        requireDefaultsInXml(FileUtils::getResourcesDirectory());
        addExisting("defaults", path, "good", false, &FileAccess::writableByOthers);
    } catch (const Failure& failure) {
        add("defaults", path, withoutPath(failure, path), true);
    }
}

void Doctor::examineProtectedFiles() {
    bool hasMain = false;
    bool hasBackup = false;
    for (const auto& file : lumora_config::examineProtectedFiles(configDirectory)) {
        const auto name = FileUtils::getFileName(file.path);
        const bool exists = file.state != ReadResult::Absent;
        hasMain = hasMain || (exists && name == ConfigKeys::localConfigFile);
        hasBackup = hasBackup || (exists && name == ConfigKeys::localConfigBackupFile);
        if (exists) {
            addExisting("file", file.path, describeFile(file), file.needsAttention(), &FileAccess::writableByOthers);
        } else if (file.needsAttention()) {
            add("file", file.path, describeFile(file), true);
        }
    }
    if (hasBackup && !hasMain) {
        add("file", configDirectory + FileUtils::FileSeparator() + std::string(ConfigKeys::localConfigFile),
            "absent, its backup is read instead", true);
    }
}

void Doctor::examineMovedAside() {
    for (const auto& file : zel::storage::EncryptFileUtils::listMovedAside(configDirectory)) {
        const bool isGood = file.state == ReadResult::Ok;
        addExisting("moved aside", file.keptAs, describe(file.state) + (isGood ? ", 'restore' can put it back" : ""),
                    true, &FileAccess::writableByOthers);
    }
}

void Doctor::examineKeys() {
    const auto folder = FileUtils::getUserLocalAppDir() + FileUtils::FileSeparator() + "keys";
    std::vector<std::string> files;
    FileUtils::getFilesFromDirectory(folder, "", files);
    if (existsOnDisk(folder)) {
        addExisting("keys", folder, std::to_string(files.size()) + " files", false, &FileAccess::usableByOthers);
    }
    for (const auto& path : files) {
        const bool isReplaced = path.ends_with(".bad");
        addExisting("key", path, isReplaced ? "not a key, moved aside when a new one was created" : "present",
                    isReplaced, &FileAccess::usableByOthers);
    }
}

void Doctor::examinePolicies(const std::string& folder) {
    std::vector<std::string> files;
    FileUtils::getFilesFromDirectory(folder, "reg", files);
    for (const auto& path : files) {
        try {
            const auto policy = PolicyFile(path).describe();
            addExisting("policy", path, describePolicy(policy),
                        !policy.refused.empty() || policy.countIneffective() != 0, &FileAccess::writableByOthers);
        } catch (const Failure& failure) {
            add("policy", path, withoutPath(failure, path), true);
        }
    }
}

void Doctor::add(const std::string& area, const std::string& path, const std::string& state, bool needsAttention) {
    report.items.push_back({area, path, state, needsAttention});
}

void Doctor::addExisting(const std::string& area, const std::string& path, const std::string& state,
                         bool needsAttention, bool FileAccess::*forbidden) {
    const auto access = FileAccess::read(path);
    const auto mode = FileAccess::readMode(path);
    const bool isForeign = !access || access->owner == FileAccess::Owner::Other;
    const bool isOpen = access && (*access).*forbidden;
    auto owner = access ? access->ownerName : std::string("unknown");
    if (access && owners == Owners::Masked) {
        owner = "<user>";
    }
    auto text = state + "; owner " + owner + (mode ? ", mode " + describeMode(*mode) : "");
    text += isForeign ? ", owned by another user" : "";
    text += isOpen ? ", too open" : "";
    add(area, path, text, needsAttention || isForeign || isOpen);
}

void showHealthNotice(const std::string& configDirectory, Printer& printer) {
    const auto problems = describeProblems(configDirectory);
    if (problems.empty()) {
        return;
    }
    std::string line;
    for (std::size_t i = 0; i < problems.size() && i < maxListed; ++i) {
        line += (i == 0 ? "" : "; ") + problems[i];
    }
    if (problems.size() > maxListed) {
        line += "; and " + std::to_string(problems.size() - maxListed) + " more";
    }
    printer.showWarning(line + "; see 'lumora-config doctor'");
}

} // namespace lumora_config
