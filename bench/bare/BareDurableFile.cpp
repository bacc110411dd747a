#include "BareDurableFile.h"

#include "RowSuite.h"

#include <kyr/StringUtils.h>
#include <zel/FileLayer.h>

#include <cstddef>
#include <string>

namespace bench {

namespace {

using zel::storage::FileLayer;

std::string serialise(const ZelUnified::ConfigMap& values) {
    std::string text = "<Lumora>\n";
    for (const auto& [key, value] : values) {
        text.append(" <userConfig name=\"").append(KyrCoreUtils::toString(key));
        text.append("\" value=\"").append(KyrCoreUtils::toString(value)).append("\"/>\n");
    }
    return text.append("</Lumora>\n");
}

} // namespace

void BareDurableFile::persist(const ZelUnified::ConfigMap& values) {
    cipher.encipher(serialise(values));
    replace(cipher.getCipherText());
}

void BareDurableFile::replace(std::string_view bytes) const {
    FileLayer& files = FileLayer::platform();
    const std::string temporary = (folder / "bare.tmp").string();
    FileLayer::Handle handle = -1;
    require(files.createFile(temporary, handle) == 0, "the bare file");
    while (!bytes.empty()) {
        std::size_t count = 0;
        require(files.write(handle, bytes, count) == 0, "the bare write");
        bytes.remove_prefix(count);
    }
    require(files.sync(handle) == 0 && files.close(handle) == 0 &&
                files.rename(temporary, (folder / "bare").string()) == 0 && files.syncDirectory(folder.string()) == 0,
            "the bare replacement");
}

} // namespace bench
