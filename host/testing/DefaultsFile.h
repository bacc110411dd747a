#pragma once

#include <filesystem>
#include <string>

namespace testing_host {

/// Makes the file with the defaults of the installation, "lumora-config-defaults.xml". Keys and values are wide or
/// UTF-8 and are written as they are, so they must contain no character that XML escapes.
class DefaultsFile {
public:
    void add(const std::string& key, const std::string& value);
    void add(const std::wstring& key, const std::wstring& value);
    /// Writes the file to the folder of the resources.
    void write(const std::filesystem::path& resources) const;

private:
    std::string settings;
};

/// Writes the defaults file with these pairs of key and value.
void writeDefaults(const std::filesystem::path& resources, const auto& values) {
    DefaultsFile file;
    for (const auto& [key, value] : values) {
        file.add(key, value);
    }
    file.write(resources);
}

} // namespace testing_host
