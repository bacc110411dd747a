#include "FileRegistry.h"
#include "RegistryFolder.h"

#include <kyr/FileUtils.h>
#include <registry/RegistryFiles.h>
#include <registry/RegistryTextFile.h>
#include <zel/RegularFile.h>

#include <cerrno>
#include <utility>

namespace zel::registry {

std::string getUserRegistryFolder() {
    const auto data = KyrCoreUtils::FileUtils::getUserLocalAppDir();
    return data.empty() ? data : data + KyrCoreUtils::FileUtils::FileSeparator() + "registry";
}

std::shared_ptr<Registry> makeFileRegistry(RegistryFolders folders, DefaultMailClient defaultMailClient) {
    return std::make_shared<FileRegistry>(std::move(folders), std::move(defaultMailClient));
}

int installRegistryText(const RegistryText& text, const std::string& name) {
    if (name.empty() || name.front() == '.' || name.find_first_of(std::string_view("/\\:\0", 4)) != std::string::npos) {
        return EINVAL;
    }
    const auto folder = getUserRegistryFolder();
    if (folder.empty()) {
        return ENOENT;
    }
    if (const int error = KyrCoreUtils::FileUtils::createDirectory(folder); error != 0) {
        return error;
    }
    auto path = folder + KyrCoreUtils::FileUtils::FileSeparator() + name;
    if (!isRegistryFileName(name)) {
        path += registryFileExtension;
    }
    const auto content = formatRegistryText(text.sections);
    return content.size() > largestRegistryFile ? EFBIG : zel::storage::RegularFile::replace(path, content);
}

} // namespace zel::registry
