#include "FilePermissions.h"

#include <filesystem>
#include <system_error>

namespace ZelUnified {

void restrictToOwner(const std::string& path) {
    using std::filesystem::perms;
    std::error_code ignored;
    std::filesystem::permissions(std::u8string(path.begin(), path.end()), perms::owner_read | perms::owner_write,
                                 ignored);
}

} // namespace ZelUnified
