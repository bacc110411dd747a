#pragma once

#include <registry/Registry.h>
#include <zel/FileLayer.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::registry {

inline constexpr std::string_view registryFileExtension = ".reg";

/// Returns true if a file of that name is a policy file: it has the extension (case-insensitive) and is not hidden.
bool isRegistryFileName(std::string_view name);

/// The maximum size of a policy file; a larger file is not read.
inline constexpr std::uintmax_t largestRegistryFile = 64U << 20U;

/// A file of a registry folder, with the data that shows whether it was changed.
struct RegistryFile {
    std::string path;
    std::uintmax_t size = 0;
    std::filesystem::file_time_type changed;

    bool operator==(const RegistryFile&) const = default;
};

/// Returns the ".reg" files of one folder without its subfolders, sorted by name. Excludes hidden files, because an
/// unfinished file is hidden. Returns an empty list if the folder is missing.
std::vector<RegistryFile> listRegistryFiles(const std::string& folder);

/// Returns the ".reg" files of the administrator's folder that contain `root`; an empty list if `folder` is empty.
std::vector<RegistryFile> listAdministratorFiles(const std::string& folder, HKEY root);

/// Returns the current state of the file; nullopt if it does not exist.
std::optional<RegistryFile> inspectRegistryFile(const std::string& path);

/// Returns the content of the file; nullopt if it cannot be read or exceeds the maximum size.
std::optional<std::string> readRegistryFile(const std::string& path);

/// Replaces the whole file durably, or leaves the old one unchanged; only the owner can access a new file. Returns 0 or
/// an errno value: EFBIG if the content exceeds the maximum size.
int replaceRegistryFile(zel::storage::FileLayer& layer, const std::string& path, std::string_view content);

} // namespace zel::registry
