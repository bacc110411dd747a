#include "DirectoryTrust.h"

#include "Failure.h"

namespace lumora_config {

using KyrCoreUtils::FileAccess;

std::string whyUntrusted(const FileAccess& access) {
    if (access.owner == FileAccess::Owner::Other) {
        return "belongs to another user, " + access.ownerName;
    }
    return access.writableByEverybody ? "can be written by everybody" : "";
}

void requireTrusted(const std::vector<std::string>& directories) {
    for (const auto& directory : directories) {
        const auto access = FileAccess::of(directory);
        const auto reason = access ? whyUntrusted(*access) : std::string();
        if (!reason.empty()) {
            throw Failure(ExitCode::Environment, directory + ": " + reason + "; --trust uses it all the same");
        }
    }
}

} // namespace lumora_config
