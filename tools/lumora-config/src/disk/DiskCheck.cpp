#include "DiskCheck.h"

#include "ResetFiles.h"
#include "SettingsOnDisk.h"
#include "output/Failure.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <zel/FipsUtils.h>

#include <CachedCopyRecord.h>
#include <ConfigKeys.h>

#include <algorithm>
#include <map>

namespace lumora_config {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::FileUtils;
using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;
using zel::storage::ReadResult;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

/// Returns the name of the key in the user's file: one key is stored under another name.
std::wstring nameInUserFile(const std::wstring& key) {
    return caseInsensitiveStringEquals(key, ConfigKeys::vvmMailstoreServer0)
               ? std::wstring(ConfigKeys::voicemailPrimaryServer)
               : key;
}

/// In FIPS mode a store does not return its value of this key.
bool isReadUnchanged(const std::wstring& key) {
    return !zel::common::FipsUtils::isFipsEnabled() ||
           !caseInsensitiveStringEquals(key, ConfigKeys::telephonyP2PEnabled);
}

/// What cannot be read now may be readable at the next start.
bool mayContainMore(const SettingsOnDisk& onDisk) {
    return onDisk.state != ReadResult::Ok && onDisk.state != ReadResult::Absent;
}

bool containsValue(const SettingsOnDisk& onDisk, const std::wstring& key, const std::wstring& value) {
    const auto found = onDisk.values.find(toStoredText(nameInUserFile(key)));
    return found != onDisk.values.end() && found->second == toStoredText(value);
}

[[noreturn]] void fail(const std::string& message) {
    throw Failure(ExitCode::Environment, message);
}

} // namespace

void DiskCheck::requireStored(const std::wstring& key, const std::wstring& value) const {
    host.settle();
    if (!containsValue(readUserSettings(host.getConfigDirectory()), key, value)) {
        failForUser(toString(key) + " is set for this run only, because it is not on the disk");
    }
}

void DiskCheck::requireAllStored(const ZelUnified::ConfigMap& values) const {
    host.settle();
    const auto onDisk = readUserSettings(host.getConfigDirectory());
    const auto missing = std::ranges::count_if(
        values, [&](const auto& entry) { return !containsValue(onDisk, entry.first, entry.second); });
    if (missing != 0) {
        failForUser(std::to_string(missing) + " of " + std::to_string(values.size()) +
                    " values are set for this run only, because they are not on the disk");
    }
}

void DiskCheck::requireRemoved(const std::string& key, const std::vector<std::wstring>& names) const {
    host.settle();
    const auto onDisk = readUserSettings(host.getConfigDirectory());
    const auto isHeld = [&](const std::wstring& name) { return onDisk.values.contains(nameInUserFile(name)); };
    if (mayContainMore(onDisk)) {
        failForUser(key + " may be reset for this run only, because the user's file cannot be read back");
    }
    if (std::ranges::any_of(names, isHeld)) {
        failForUser(key + " is reset for this run only, because the disk still holds the user's value");
    }
}

void DiskCheck::requireCopy(ZelUnified::ConfigStore& store) const {
    host.settle();
    const auto what = "the copy of " + store.getName() + " is not on the disk";
    if (isVolatile()) {
        failForUser(what);
    }
    const auto onDisk = readUserSettings(host.getConfigDirectory());
    const auto record = onDisk.values.find(ConfigKeys::primaryConfigStores);
    const auto entry = record == onDisk.values.end()
                           ? std::nullopt
                           : ZelUnified::CachedCopyRecord(record->second).find(toWideString(store.getName()));
    if (!entry || entry->priority != toWideString(store.getCachedPriority())) {
        failForUser("the record of the copy of " + store.getName() + " is not on the disk");
    }
    // The next start searches the file by the name in the record.
    const auto path = ZelUnified::CachedCopyRecord::findCopyPath(host.getConfigDirectory(), toString(entry->name));
    if (!path) {
        fail(what + ": its name leads out of the folder of the copies");
    }
    requireCopyAt(*path, store);
}

void DiskCheck::requireProvisioned(ZelUnified::ConfigStore& store) const {
    host.settle();
    requireCopyAt(*ZelUnified::CachedCopyRecord::findCopyPath(host.getConfigDirectory(), store.getName()), store);
}

void DiskCheck::requireCopyAt(const std::string& path, ZelUnified::ConfigStore& store) const {
    const auto onDisk = readSettings(path);
    const auto isOnDisk = [&](const std::wstring& key) {
        std::wstring value;
        const auto found = onDisk.values.find(toStoredText(key));
        const bool isHeld = store.getValue(key, value);
        // A document does not preserve leading and trailing blanks of a text.
        return !isHeld ||
               (found != onDisk.values.end() && (!isReadUnchanged(key) || KyrCoreUtils::trim(found->second) ==
                                                                              KyrCoreUtils::trim(toStoredText(value))));
    };
    const auto what = "the copy of " + store.getName() + " is not on the disk";
    if (onDisk.state == ReadResult::Ok && !onDisk.wellFormed) {
        fail(what + ": the document cannot be read back, because a key is not an XML name or a value is too long");
    }
    if (onDisk.state != ReadResult::Ok || !std::ranges::all_of(store.getKeys(), isOnDisk)) {
        failForFile(what, path);
    }
}

void DiskCheck::requireRecord(const std::wstring& record) const {
    host.settle();
    const auto onDisk = readUserSettings(host.getConfigDirectory());
    if (mayContainMore(onDisk)) {
        failForUser("the store may be removed for this run only, because the user's file cannot be read back");
    }
    const auto found = onDisk.values.find(ConfigKeys::primaryConfigStores);
    if ((found == onDisk.values.end() ? std::wstring() : found->second) != toStoredText(record)) {
        failForUser("the store is removed for this run only, because the disk still holds the record of its copy");
    }
}

void DiskCheck::requireGone(const std::string& path) const {
    host.settle();
    if (FileUtils::fileExists(path)) {
        fail("the store is removed for this run only, because its copy cannot be deleted: " + path);
    }
}

void DiskCheck::requireFile(const std::string& path, std::string_view content) {
    if (!FileUtils::fileExists(path) || readWholeFile(path) != content) {
        fail(path + " does not contain what was written to it");
    }
}

void DiskCheck::requireReadable(const std::string& path) const {
    host.settle();
    if (const auto onDisk = readSettings(path); onDisk.state != ReadResult::Ok) {
        fail(path + " is " + describe(onDisk.state));
    }
}

void DiskCheck::requireReset() const {
    host.settle();
    const auto leftovers = findResetLeftovers(host.getConfigDirectory());
    if (!leftovers.empty()) {
        const auto more = leftovers.size() - 1;
        fail("the reset is not complete: " + leftovers.front() + " still exists" +
             (more == 0 ? "" : ", and " + std::to_string(more) + " more"));
    }
}

void DiskCheck::failForUser(const std::string& what) const {
    if (isVolatile()) {
        fail(what + ": in SDK mode no settings of the user are stored (Lumora_SDK_Mode is true)");
    }
    if (host.isPoweredDown()) {
        fail(what + ": a shutdown of the machine is announced, and nothing is written until a refresh");
    }
    failForFile(what, getUserFile());
}

void DiskCheck::failForFile(const std::string& what, const std::string& path) const {
    fail(what + ": " + explainFile(path));
}

std::string DiskCheck::getUserFile() const {
    return host.getConfigDirectory() + FileUtils::FileSeparator() + std::string(ConfigKeys::localConfigFile);
}

std::string DiskCheck::explainFile(const std::string& path) const {
    const auto examined = examineProtectedFiles(host.getConfigDirectory());
    std::map<std::string, const zel::storage::ProtectedFileHealth*> files;
    for (const auto& file : examined) {
        files[FileUtils::getFileName(file.path)] = &file;
    }
    const auto name = FileUtils::getFileName(path);
    const auto written = files.find(name);
    if (written != files.end() && written->second->hasFailedWrite()) {
        return name + ": " + written->second->lastWrite->cause +
               (written->second->pending ? "; the program tries again until it ends" : "");
    }
    const auto backup = files.find(std::string(ConfigKeys::localConfigBackupFile));
    if (path == getUserFile() && backup != files.end() && backup->second->state != ReadResult::Ok &&
        backup->second->state != ReadResult::Absent) {
        return name + " is not written while its backup is " + describe(backup->second->state);
    }
    if (written != files.end() && written->second->state != ReadResult::Ok) {
        return name + " is " + describe(written->second->state);
    }
    return name + " was not written";
}

bool DiskCheck::isVolatile() const {
    std::wstring mode;
    host.onServices("lumora-config: mode",
                    [&] { host.getFeatureSet()->getConfig(std::wstring(ConfigKeys::lumoraSdkMode), mode, false); });
    return KyrCoreUtils::toBool(mode);
}

} // namespace lumora_config
