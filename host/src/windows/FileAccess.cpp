#include "AccessRights.h"
#include "FileSecurity.h"
#include "kyr/PathText.h"

#include <kyr/FileAccess.h>

#include <cerrno>

namespace KyrCoreUtils {

using zel::platform::AccessRights;
using zel::platform::FileSecurity;

std::optional<FileAccess> FileAccess::read(const std::string& path) {
    const auto file = pathFromText(path);
    const auto security = file ? FileSecurity::read(*file) : std::nullopt;
    return security ? std::optional<FileAccess>(security->describe()) : std::nullopt;
}

std::optional<unsigned> FileAccess::readMode(const std::string& /*path*/) {
    return std::nullopt;
}

int FileAccess::restrictToOwner(const std::string& path) noexcept {
    try {
        const auto file = pathFromText(path);
        return file ? AccessRights::restrict(*file, AccessRights::Kind::File) : EINVAL;
    } catch (...) {
        return ENOMEM;
    }
}

} // namespace KyrCoreUtils
