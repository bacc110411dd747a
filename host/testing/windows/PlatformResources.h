#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace testing_host {

/// Returns a resource of a library as the platform's own calls find it; nullopt if there is none.
std::optional<std::string> readPlatformResource(const std::filesystem::path& library, const std::wstring& type,
                                                const std::wstring& name);

} // namespace testing_host
