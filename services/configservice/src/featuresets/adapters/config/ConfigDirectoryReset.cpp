#include "ConfigDirectoryReset.h"

#include "featuresets/adapters/config/cache/ConfigAdapterLogger.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace ZelUnified {

namespace {

bool outlivesReset(std::string_view fileName) {
    constexpr std::array<std::string_view, 4> kept{"cachedUrlProvisioningConfigStore.dat", "deviceData4.properties",
                                                   ConfigKeys::configUserFile, "installationId.txt"};
    return std::any_of(kept.begin(), kept.end(), [&](std::string_view name) {
        return KyrCoreUtils::caseInsensitiveStringEquals(name, fileName);
    });
}

} // namespace

void removeFilesFromDirectory(const std::string& directory) {
    std::vector<std::string> files;
    KyrCoreUtils::FileUtils::getFilesFromDirectory(directory, "", files);
    // The backup may be older than the user's file: alone, after a power cut, it would bring old values back.
    std::stable_partition(files.begin(), files.end(), [](const std::string& path) {
        return KyrCoreUtils::caseInsensitiveStringEquals(KyrCoreUtils::FileUtils::getFileName(path),
                                                         ConfigKeys::localConfigBackupFile);
    });
    for (const auto& path : files) {
        const auto fileName = KyrCoreUtils::FileUtils::getFileName(path);
        if (outlivesReset(fileName)) {
            ZelLog(configAdapterLogger, ZelLogLevel::Info, ZEL_HERE,
                   "file will be excluded from reset deletion: [" + fileName + "]");
        } else if (KyrCoreUtils::FileUtils::removeFile(path) == 0) {
            ZelLog(configAdapterLogger, ZelLogLevel::Info, ZEL_HERE, "File: [" + path + "] deleted");
        } else {
            ZelLog(configAdapterLogger, ZelLogLevel::Error, ZEL_HERE, "Unable to delete file: [" + path + "]");
        }
    }
}

} // namespace ZelUnified
