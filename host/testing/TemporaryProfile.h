#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace testing_host {

/// A profile in a new temporary folder: the host's directories are in it while the object exists; the destructor
/// removes it.
class TemporaryProfile {
public:
    TemporaryProfile();
    ~TemporaryProfile();
    TemporaryProfile(const TemporaryProfile&) = delete;
    TemporaryProfile& operator=(const TemporaryProfile&) = delete;

    std::filesystem::path root() const { return base; }
    std::filesystem::path config() const { return base / "config"; }
    std::filesystem::path data() const { return base / "data"; }
    std::filesystem::path state() const { return base / "state"; }
    std::filesystem::path resources() const { return base / "resources"; }

private:
    std::filesystem::path base;
};

/// Returns the content of the file; empty if it cannot be read.
std::string readFile(const std::filesystem::path& path);
/// Writes the file and creates its folder.
void writeFile(const std::filesystem::path& path, std::string_view content);

} // namespace testing_host
