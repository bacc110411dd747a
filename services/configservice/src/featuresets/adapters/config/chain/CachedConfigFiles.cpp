#include "CachedConfigFiles.h"

#include "ConfigStoreManagerLogger.h"

#include <kyr/FileUtils.h>

#include <ConfigKeys.h>

namespace ZelUnified {

using KyrCoreUtils::FileUtils;

namespace {

constexpr std::string_view copyPrefix = "cached";
constexpr std::string_view xmlExtension = ".xml";
constexpr std::string_view datExtension = ".dat";

/// Returns the extension including the "."; empty if there is none.
std::string_view extensionOf(std::string_view name) {
    const auto point = name.rfind('.');
    return point == std::string_view::npos ? std::string_view() : name.substr(point);
}

std::string withExtension(std::string_view name, std::string_view extension) {
    return std::string(name.substr(0, name.rfind('.'))).append(extension);
}

/// Returns the name of the store whose copy has that name, or the file's name if it is no copy.
std::string_view storeNameOf(std::string_view fileName) {
    const auto extension = extensionOf(fileName);
    if (!fileName.starts_with(copyPrefix) || (extension != datExtension && extension != xmlExtension)) {
        return fileName;
    }
    fileName.remove_suffix(extension.size());
    fileName.remove_prefix(copyPrefix.size());
    return fileName;
}

} // namespace

std::string CachedConfigFiles::getDirectory() {
    return FileUtils::getConfigDirectory() + FileUtils::FileSeparator() + std::string(ConfigKeys::cacheDirectory);
}

std::string CachedConfigFiles::getFileName(const std::string& storeName) {
    return std::string(copyPrefix).append(storeName).append(datExtension);
}

std::string CachedConfigFiles::getPath(const std::string& fileName) {
    return getDirectory() + FileUtils::FileSeparator() + fileName;
}

bool CachedConfigFiles::mayHaveCopy(std::string_view storeName) {
    for (;;) {
        const auto separator = storeName.find_first_of("/\\");
        if (storeName.substr(0, separator) == "..") {
            return false;
        }
        if (separator == storeName.npos) {
            return true;
        }
        storeName.remove_prefix(separator + 1);
    }
}

bool CachedConfigFiles::removeCachedFiles(const std::string& fileName) {
    if (!mayHaveCopy(fileName) || !mayHaveCopy(storeNameOf(fileName))) {
        ZelLog(configStoreManagerLogger, ZelLogLevel::Warning, ZEL_HERE,
               "Name contains \"..\", cached file not removed: [" + fileName + "]");
        return false;
    }
    bool found = removeIfPresent(getPath(fileName));
    if (extensionOf(fileName) == xmlExtension && removeIfPresent(getPath(withExtension(fileName, datExtension)))) {
        found = true;
    }
    return found;
}

bool CachedConfigFiles::removeIfPresent(const std::string& path) {
    if (!FileUtils::fileExists(path)) {
        return false;
    }
    removeFile(path);
    return true;
}

void CachedConfigFiles::removeFile(const std::string& path) {
    if (FileUtils::removeFile(path) != 0) {
        ZelLog(configStoreManagerLogger, ZelLogLevel::Error, ZEL_HERE, "Failed to remove file: " + path);
        return;
    }
    ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE, "Removed file: " + path);
}

std::vector<std::string> CachedConfigFiles::getXmlNames() {
    std::vector<std::string> xmlFiles;
    std::vector<std::string> datFiles;
    FileUtils::getFilesFromDirectory(getDirectory(), "xml", xmlFiles);
    FileUtils::getFilesFromDirectory(getDirectory(), "dat", datFiles);
    for (const auto& file : datFiles) {
        if (extensionOf(file) == datExtension) {
            xmlFiles.push_back(withExtension(file, xmlExtension));
        }
    }
    for (auto& file : xmlFiles) {
        file = FileUtils::getFileName(file);
    }
    return xmlFiles;
}

} // namespace ZelUnified
