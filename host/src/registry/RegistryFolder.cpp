#include "RegistryFolder.h"

#include "kyr/PathText.h"
#include "zel/storage/DurableFile.h"

#include <kyr/FileUtils.h>
#include <kyr/FstreamUtils.h>
#include <kyr/StringUtils.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

namespace zel::registry {

bool isRegistryFileName(std::string_view name) {
    constexpr auto extension = registryFileExtension;
    return name.size() > extension.size() && name.front() != '.' &&
           KyrCoreUtils::caseInsensitiveStringEquals(name.substr(name.size() - extension.size()), extension);
}

std::vector<RegistryFile> listRegistryFiles(const std::string& folder) {
    std::vector<RegistryFile> files;
    const auto path = KyrCoreUtils::pathFromText(folder);
    if (!path) {
        return files;
    }
    std::error_code error;
    std::filesystem::directory_iterator entry(*path, error);
    for (const std::filesystem::directory_iterator end; !error && entry != end; entry.increment(error)) {
        if (!isRegistryFileName(KyrCoreUtils::textFromPath(entry->path().filename()))) {
            continue;
        }
        if (auto file = inspectRegistryFile(KyrCoreUtils::textFromPath(entry->path()))) {
            files.push_back(std::move(*file));
        }
    }
    std::ranges::sort(files, {}, &RegistryFile::path);
    return files;
}

std::vector<RegistryFile> listAdministratorFiles(const std::string& folder, HKEY root) {
    if (folder.empty()) {
        return {};
    }
    const std::string name = root == HKEY_CURRENT_USER ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
    return listRegistryFiles(folder + KyrCoreUtils::FileUtils::FileSeparator() + name);
}

std::optional<RegistryFile> inspectRegistryFile(const std::string& path) {
    const auto native = KyrCoreUtils::pathFromText(path);
    std::error_code error;
    if (!native || !std::filesystem::is_regular_file(*native, error)) {
        return std::nullopt;
    }
    RegistryFile file{path, std::filesystem::file_size(*native, error), {}};
    if (!error) {
        file.changed = std::filesystem::last_write_time(*native, error);
    }
    return error ? std::nullopt : std::make_optional(std::move(file));
}

std::optional<std::string> readRegistryFile(const std::string& path) {
    const auto file = inspectRegistryFile(path);
    if (!file || file->size > largestRegistryFile) {
        return std::nullopt;
    }
    std::fstream stream;
    if (!KyrCoreUtils::FstreamUtils::open(stream, path, KyrCoreUtils::StreamMode::Read)) {
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(file->size), '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    return stream.bad() ? std::nullopt : std::make_optional(std::move(bytes));
}

int replaceRegistryFile(zel::storage::FileLayer& layer, const std::string& path, std::string_view content) {
    if (content.size() > largestRegistryFile) {
        return EFBIG;
    }
    return zel::storage::DurableFile::replace(layer, path, content);
}

} // namespace zel::registry
