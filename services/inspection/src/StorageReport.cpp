#include "StorageReport.h"

#include "RequestError.h"

#include <kyr/FileUtils.h>
#include <zel/EncryptFileUtils.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <string_view>

namespace inspection {

using KyrCoreUtils::FileUtils;
using zel::storage::EncryptFileUtils;
using zel::storage::ProtectedFileHealth;
using zel::storage::ReadResult;
using zel::storage::StorageHealth;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

/// Returns what is not on the disk, or "". Only the client knows that.
std::string describeWrites(const ProtectedFileHealth& file) {
    std::string text;
    if (file.hasFailedWrite()) {
        text = "the last write failed: " + file.lastWrite->cause;
    }
    if (file.pending) {
        text += (text.empty() ? "" : ", ") + std::string("a change waits to be written");
    }
    return text;
}

bool isUsable(const ProtectedFileHealth& file) {
    return file.state == ReadResult::Ok || file.state == ReadResult::Absent;
}

Json makeItem(const std::string& area, const std::string& path, const std::string& state, bool attention) {
    return {{"area", area}, {"path", path}, {"state", state}, {"attention", attention}};
}

Json makeItem(const ProtectedFileHealth& file) {
    const auto writes = describeWrites(file);
    auto item = makeItem("file", file.path, describe(file.state) + (writes.empty() ? "" : ", " + writes),
                         file.needsAttention());
    item["writes"] = writes;
    return item;
}

/// Returns the file of this name, or null.
const ProtectedFileHealth* find(const StorageHealth& health, std::string_view name) {
    const auto found = std::ranges::find_if(
        health.files, [name](const ProtectedFileHealth& file) { return FileUtils::getFileName(file.path) == name; });
    return found == health.files.end() ? nullptr : &*found;
}

std::string explainMissingWrite(const StorageHealth& health, const std::string& name) {
    const auto* const file = find(health, name);
    if (file != nullptr && file->hasFailedWrite()) {
        return name + ": " + file->lastWrite->cause + (file->pending ? "; the client tries again until it ends" : "");
    }
    const auto* const backup = find(health, ConfigKeys::localConfigBackupFile);
    if (name == ConfigKeys::localConfigFile && backup != nullptr && !isUsable(*backup)) {
        return name + " is not written while its backup is " + describe(backup->state);
    }
    if (file != nullptr && file->state != ReadResult::Ok) {
        return name + " is " + describe(file->state);
    }
    return name + " was not written";
}

} // namespace

Json reportStorage() {
    const auto directory = FileUtils::getConfigDirectory();
    Json items = Json::array();
    items.push_back(makeItem("lock", directory, "held by the running client", false));
    for (const auto& file : EncryptFileUtils::health(directory).files) {
        items.push_back(makeItem(file));
    }
    for (const auto& file : EncryptFileUtils::listMovedAside(directory)) {
        items.push_back(makeItem("moved aside", file.keptAs, describe(file.state), true));
    }
    const bool attention = std::ranges::any_of(items, [](const Json& item) { return item["attention"].get<bool>(); });
    return {{"type", "health"}, {"attention", attention}, {"items", items}};
}

void requireWritten(const ExpectedWrite& expected) {
    if (!expected.obstacle.empty()) {
        throw RequestError(RequestError::Code::Environment, expected.what + ": " + expected.obstacle);
    }
    const auto health = EncryptFileUtils::health(FileUtils::getConfigDirectory());
    const auto* const file = find(health, expected.file);
    const bool isWritten = file != nullptr && file->state == ReadResult::Ok && !file->pending && file->lastWrite &&
                           file->lastWrite->succeeded &&
                           (!expected.mustBeNew || file->lastWrite->time >= expected.since);
    if (!isWritten) {
        throw RequestError(RequestError::Code::Environment,
                           expected.what + ": " + explainMissingWrite(health, expected.file));
    }
}

} // namespace inspection
