#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace config_model {

/// The names in a folder, sorted; none when it is missing.
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
