#include "PrivateFiles.h"

namespace testing_host {

bool isPrivate(const std::filesystem::path& path) {
    using std::filesystem::perms;
    const auto status = std::filesystem::status(path);
    return status.permissions() ==
           (std::filesystem::is_directory(status) ? perms::owner_all : perms::owner_read | perms::owner_write);
}

} // namespace testing_host
