#include "StorageReport.h"

#include "RequestError.h"

#include <kyr/FileUtils.h>
#include <zel/EncryptFileUtils.h>

#include <ConfigKeys.h>

#include <algorithm>

namespace inspection {

using KyrCoreUtils::FileUtils;
using zel::storage::EncryptFileUtils;
using zel::storage::ProtectedFileHealth;
using zel::storage::ReadResult;

namespace {

std::string describe(const ProtectedFileHealth& file) {
    auto text = describe(file.state);
    if (file.lastWrite && !file.lastWrite->succeeded) {
        text += ", the last write failed: " + file.lastWrite->cause;
    }
    return file.pending ? text + ", a change waits to be written" : text;
}

bool needsAttention(const ProtectedFileHealth& file) {
    const bool isGood = file.state == ReadResult::Ok || file.state == ReadResult::Absent;
    return !isGood || file.pending || (file.lastWrite && !file.lastWrite->succeeded);
}

Json makeItem(const std::string& area, const std::string& path, const std::string& state, bool attention) {
    return {{"area", area}, {"path", path}, {"state", state}, {"attention", attention}};
}

} // namespace

Json reportStorage() {
    const auto directory = FileUtils::getConfigDirectory();
    Json items = Json::array();
    items.push_back(makeItem("lock", directory, "held by the running client", false));
    for (const auto& file : EncryptFileUtils::health(directory).files) {
        items.push_back(makeItem("file", file.path, describe(file), needsAttention(file)));
    }
    for (const auto& file : EncryptFileUtils::listMovedAside(directory)) {
        items.push_back(makeItem("moved aside", file.keptAs, describe(file.state), true));
    }
    const bool attention = std::ranges::any_of(items, [](const Json& item) { return item["attention"].get<bool>(); });
    return {{"type", "health"}, {"attention", attention}, {"items", items}};
}

void requireUserFileWritten() {
    for (const auto& file : EncryptFileUtils::health(FileUtils::getConfigDirectory()).files) {
        const bool isUsers = FileUtils::getFileName(file.path) == ZelUnified::ConfigKeys::localConfigFile;
        const bool failed = file.lastWrite && !file.lastWrite->succeeded;
        if (isUsers && (file.pending || failed)) {
            throw RequestError(RequestError::Code::Environment,
                               "the client has taken the change, but it is not on the disk: " +
                                   (failed ? file.lastWrite->cause : std::string("it waits to be written")));
        }
    }
}

} // namespace inspection
