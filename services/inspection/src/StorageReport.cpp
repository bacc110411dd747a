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

namespace {

std::string describe(const ProtectedFileHealth& file) {
    auto text = describe(file.state);
    if (file.hasFailedWrite()) {
        text += ", the last write failed: " + file.lastWrite->cause;
    }
    return file.pending ? text + ", a change waits to be written" : text;
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
        items.push_back(makeItem("file", file.path, describe(file), file.needsAttention()));
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
        if (isUsers && (file.pending || file.hasFailedWrite())) {
            throw RequestError(
                RequestError::Code::Environment,
                "the client has taken the change, but it is not on the disk: " +
                    (file.hasFailedWrite() ? file.lastWrite->cause : std::string("it waits to be written")));
        }
    }
}

} // namespace inspection
