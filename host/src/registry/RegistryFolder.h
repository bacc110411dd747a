#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::registry {

inline constexpr std::string_view registryFileExtension = ".reg";

/// Whether a file of that name is policy: it ends with the extension, in any case, and is not hidden.
bool isRegistryFileName(std::string_view name);

/// A larger file is no policy: it is not read.
inline constexpr std::uintmax_t largestRegistryFile = 64U << 20U;

/// A file of a registry folder and what tells that it was changed.
struct RegistryFile {
    std::string path;
    std::uintmax_t size = 0;
    std::filesystem::file_time_type changed;

    bool operator==(const RegistryFile&) const = default;
};

/// The ".reg" files of one folder, not of those below, in the order of their names. Hidden files are none of them: an
/// unfinished one is hidden. A folder that is missing has none.
std::vector<RegistryFile> listRegistryFiles(const std::string& folder);

/// The file as it is now; nothing when it is gone.
std::optional<RegistryFile> inspectRegistryFile(const std::string& path);

/// The whole file; nothing when it can't be read or is too large to be a policy.
std::optional<std::string> readRegistryFile(const std::string& path);

/// Replaces the file as a whole, durably, or leaves the old one as it was; a new one is the owner's alone. 0, or an
/// errno value: EFBIG for a content that no reader would take.
int replaceRegistryFile(const std::string& path, std::string_view content);

} // namespace zel::registry
