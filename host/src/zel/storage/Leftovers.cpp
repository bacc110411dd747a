#include "Leftovers.h"

#include "PathParts.h"

#include <kyr/Paths.h>

#include <chrono>
#include <filesystem>
#include <system_error>

namespace zel::storage {

namespace {

constexpr std::chrono::minutes longAgo{10};
constexpr std::size_t randomDigits = 16;

bool isTemporaryOf(std::string_view candidate, const std::string& name) {
    const std::string start = "." + name + ".";
    return candidate.size() == start.size() + randomDigits + temporarySuffix.size() && candidate.starts_with(start) &&
           candidate.ends_with(temporarySuffix);
}

} // namespace

void removeLeftovers(FileLayer& layer, const std::string& path) {
    const PathParts parts = splitPath(path);
    const auto directory = KyrCoreUtils::toPath(parts.directory.empty() ? "." : parts.directory);
    const auto now = std::filesystem::file_time_type::clock::now();
    std::error_code failed;
    for (std::filesystem::directory_iterator entry(directory, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const std::string name = entry->path().filename().string();
        if (!isTemporaryOf(name, parts.name)) {
            continue;
        }
        std::error_code ignored;
        const auto written = std::filesystem::last_write_time(entry->path(), ignored);
        if (!ignored && now - written > longAgo) {
            layer.unlink(parts.prefix + name);
        }
    }
}

} // namespace zel::storage
