#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace config_model {

/// Returns the sorted names in a folder, or nothing if the folder does not exist.
inline std::vector<std::string> listFolder(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    if (std::filesystem::exists(folder)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace config_model
