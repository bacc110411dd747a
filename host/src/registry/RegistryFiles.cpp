#include "FileRegistry.h"
#include "RegistryFolder.h"

#include <kyr/FileUtils.h>
#include <registry/RegistryFiles.h>
#include <registry/RegistryTextFile.h>
#include <zel/RegularFile.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

namespace zel::registry {

std::string getUserRegistryFolder() {
    const auto data = KyrCoreUtils::FileUtils::getUserLocalAppDir();
    return data.empty() ? data : data + KyrCoreUtils::FileUtils::FileSeparator() + "registry";
}

std::vector<std::string> findRegistryFiles(HKEY root) {
    const auto administrator = getAdministratorRegistryFolder();
    if (administrator.empty()) {
        return {};
    }
    auto files = listAdministratorFiles(administrator, root);
    if (const auto user = getUserRegistryFolder(); root == HKEY_CURRENT_USER && !user.empty()) {
        std::ranges::move(listRegistryFiles(user), std::back_inserter(files));
    }
    std::vector<std::string> paths;
    paths.reserve(files.size());
    for (auto& file : files) {
        paths.push_back(std::move(file.path));
    }
    return paths;
}

std::shared_ptr<Registry> makeFileRegistry(RegistryFolders folders, DefaultMailClient defaultMailClient,
                                           zel::storage::FileLayer* files) {
    return std::make_shared<FileRegistry>(std::move(folders), std::move(defaultMailClient), files);
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
