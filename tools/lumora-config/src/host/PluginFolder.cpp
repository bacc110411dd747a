#include "PluginFolder.h"

#include "output/Failure.h"

#include <kyr/ProcessUtils.h>

#include <filesystem>
#include <vector>

namespace lumora_config {

namespace {

namespace fs = std::filesystem;

std::string describeAbsence(const fs::path& folder) {
    std::error_code ignored;
    const auto status = fs::status(folder, ignored);
    const auto name = folder.lexically_normal().string();
    if (!fs::exists(status)) {
        return "there is no folder " + name;
    }
    return fs::is_directory(status) ? "it is not in " + name : name + " is not a folder";
}

} // namespace

std::string findPluginFolder(const std::string& asked) {
    std::vector<fs::path> candidates{asked};
    if (asked.empty()) {
        const fs::path program = KyrCoreUtils::ProcessUtils::getProgramFolder();
        candidates = {program / ".." / "lib", program / ".." / LUMORA_PLUGIN_FOLDER, LUMORA_INSTALLED_PLUGIN_FOLDER};
    }
    std::string absences;
    for (const auto& folder : candidates) {
        std::error_code ignored;
        if (fs::is_regular_file(folder / LUMORA_PLUGIN_LIBRARY, ignored)) {
            return folder.lexically_normal().string();
        }
        absences += (absences.empty() ? "" : ", ") + describeAbsence(folder);
    }
    throw Failure(ExitCode::Environment, "no plug-in " LUMORA_PLUGIN_LIBRARY ": " + absences);
}

} // namespace lumora_config
