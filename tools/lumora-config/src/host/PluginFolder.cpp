#include "PluginFolder.h"

#include "output/Failure.h"

#include <kyr/ProcessUtils.h>

#include <filesystem>
#include <vector>

namespace lumora_config {

std::string findPluginFolder(const std::string& asked) {
    namespace fs = std::filesystem;
    std::vector<fs::path> candidates{asked};
    if (asked.empty()) {
        const fs::path program = KyrCoreUtils::ProcessUtils::getProgramFolder();
        candidates = {program / ".." / "lib", program / ".." / LUMORA_PLUGIN_FOLDER, LUMORA_INSTALLED_PLUGIN_FOLDER};
    }
    for (const auto& folder : candidates) {
        std::error_code ignored;
        if (fs::is_regular_file(folder / LUMORA_PLUGIN_LIBRARY, ignored)) {
            return folder.lexically_normal().string();
        }
    }
    throw Failure(ExitCode::Environment,
                  "no plug-in " LUMORA_PLUGIN_LIBRARY " in " + candidates.front().lexically_normal().string());
}

} // namespace lumora_config
