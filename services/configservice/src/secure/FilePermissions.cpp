#include "FilePermissions.h"

#include <zel/FileLayer.h>

#include <filesystem>
#include <system_error>

namespace ZelUnified {

void restrictToOwner(const std::string& path) {
    using std::filesystem::perms;
    std::error_code ignored;
    std::filesystem::permissions(std::u8string(path.begin(), path.end()), perms::owner_read | perms::owner_write,
                                 ignored);
}

void createForOwner(const std::string& path, std::string_view content) {
    auto& layer = zel::storage::FileLayer::platform();
    zel::storage::FileLayer::Handle file = -1;
    if (layer.createFile(path, file) != 0) {
        return;
    }
    std::size_t count = 0;
    while (!content.empty() && layer.write(file, content, count) == 0 && count > 0) {
        content.remove_prefix(count);
    }
    layer.close(file);
}

} // namespace ZelUnified
