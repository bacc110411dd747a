#include "HealthNotice.h"

#include "SettingsOnDisk.h"

#include <kyr/FileUtils.h>
#include <zel/EncryptFileUtils.h>

#include <vector>

namespace lumora_config {

using KyrCoreUtils::FileUtils;
using zel::storage::EncryptFileUtils;
using zel::storage::ReadResult;

namespace {

constexpr std::size_t mostNamed = 3;

std::vector<std::string> describeTroubles(const std::string& directory) {
    std::vector<std::string> troubles;
    for (const auto& file : examineProtectedFiles(directory)) {
        if (file.state != ReadResult::Ok && file.state != ReadResult::Absent) {
            troubles.push_back(FileUtils::getFileName(file.path) + " is " + describe(file.state));
        }
    }
    for (const auto& file : EncryptFileUtils::listMovedAside(directory)) {
        troubles.push_back(FileUtils::getFileName(file.original) + " was moved aside as " +
                           FileUtils::getFileName(file.keptAs) + " (" + describe(file.state) + ")");
    }
    return troubles;
}

} // namespace

void showHealthNotice(const std::string& configDirectory, Printer& printer) {
    const auto troubles = describeTroubles(configDirectory);
    if (troubles.empty()) {
        return;
    }
    std::string line;
    for (std::size_t i = 0; i < troubles.size() && i < mostNamed; ++i) {
        line += (i == 0 ? "" : "; ") + troubles[i];
    }
    if (troubles.size() > mostNamed) {
        line += "; and " + std::to_string(troubles.size() - mostNamed) + " more";
    }
    printer.showWarning(line + "; see 'lumora-config doctor'");
}

} // namespace lumora_config
