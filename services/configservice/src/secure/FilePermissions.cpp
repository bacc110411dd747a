#include "FilePermissions.h"

#include <kyr/FileAccess.h>
#include <zel/FileLayer.h>

namespace ZelUnified {

void restrictToOwner(const std::string& path) {
    KyrCoreUtils::FileAccess::restrictToOwner(path);
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
