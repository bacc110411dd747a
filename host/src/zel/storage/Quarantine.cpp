#include "Quarantine.h"

#include "PathParts.h"

#include <kyr/Paths.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace zel::storage {

namespace {

constexpr std::string_view suffix = ".unreadable";

/// Returns true if the file system does not support links, or not for this kind of file.
bool isWithoutLinks(int error) {
    return error == EPERM || error == ENOTSUP || error == ENOSYS || error == EMLINK;
}

std::string nameOf(const std::string& path, unsigned long number) {
    std::string name = path + std::string(suffix);
    return number == 1 ? name : name + "." + std::to_string(number);
}

/// Returns the number for `end`, the text after the suffix; 0 unless it is empty or a dot and a number that nameOf()
/// creates.
unsigned long numberOf(std::string_view end) {
    if (end.empty()) {
        return 1;
    }
    unsigned long number = 0;
    const char* const last = end.data() + end.size();
    const auto [stopped, error] = std::from_chars(end.data() + 1, last, number);
    const bool isNumber = end.size() > 1 && end[0] == '.' && end[1] != '0' && error == std::errc() && stopped == last;
    return isNumber && number > 1 && number <= Quarantine::highestNumber ? number : 0;
}

bool isSameFile(const std::string& a, const std::string& b) {
    std::error_code ignored;
    return std::filesystem::equivalent(KyrCoreUtils::toPath(a), KyrCoreUtils::toPath(b), ignored);
}

} // namespace

int Quarantine::preserve(const std::string& path, std::string& keptAs) const {
    const int error = linkOrMove(path, keptAs);
    if (error == 0) {
        removeOldest(path);
    }
    return error;
}

int Quarantine::moveAside(const std::string& path, std::string& keptAs) const {
    const Numbered names = list(path);
    const unsigned long number = names.empty() ? 1 : names.back().first + 1;
    if (number > highestNumber) {
        return EEXIST; // list() does not find a file with a higher number, so the next one would replace it
    }
    keptAs = nameOf(path, number);
    if (const int error = layer.rename(path, keptAs); error != 0) {
        return error;
    }
    const int error = layer.syncDirectory(splitPath(path).directory);
    removeOldest(path);
    return error;
}

int Quarantine::putBack(const std::string& replacement, const std::string& path) const {
    std::string keptAs;
    if (const int error = linkOrMove(path, keptAs); error != 0) {
        return error;
    }
    if (const int error = layer.rename(replacement, path); error != 0) {
        if (!keptAs.empty()) {
            layer.rename(keptAs, path); // where the file system has no links, the file has been moved
        }
        return error;
    }
    return layer.syncDirectory(splitPath(path).directory);
}

Quarantine::KeptName Quarantine::parse(const std::string& path) {
    const PathParts parts = splitPath(path);
    const auto at = parts.name.rfind(suffix);
    if (at == std::string::npos || at == 0) {
        return {};
    }
    const unsigned long number = numberOf(std::string_view(parts.name).substr(at + suffix.size()));
    return number == 0 ? KeptName{} : KeptName{parts.prefix + parts.name.substr(0, at), number};
}

int Quarantine::linkOrMove(const std::string& path, std::string& keptAs) const {
    keptAs.clear();
    const Numbered names = list(path);
    for (const auto& [number, name] : names) {
        if (isSameFile(path, name)) {
            keptAs = name;
            return 0;
        }
    }
    for (unsigned long number = names.empty() ? 1 : names.back().first + 1; number <= highestNumber; ++number) {
        const std::string name = nameOf(path, number);
        const int linkError = layer.link(path, name);
        if (linkError == EEXIST) {
            continue;
        }
        if (linkError == ENOENT) {
            return 0;
        }
        const int error = isWithoutLinks(linkError) ? layer.rename(path, name) : linkError;
        if (error == 0) {
            keptAs = name;
        }
        return error;
    }
    return EEXIST;
}

/// Returns the kept files and the directories with such names, lowest number first.
Quarantine::Numbered Quarantine::list(const std::string& path) {
    const PathParts parts = splitPath(path);
    const auto directory = KyrCoreUtils::toPath(parts.directory.empty() ? "." : parts.directory);
    Numbered found;
    std::error_code failed;
    for (std::filesystem::directory_iterator entry(directory, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        std::string name = parts.prefix + KyrCoreUtils::toText(entry->path().filename());
        if (const KeptName kept = parse(name); kept.original == path) {
            found.emplace_back(kept.number, std::move(name));
        }
    }
    std::ranges::sort(found);
    return found;
}

void Quarantine::removeOldest(const std::string& path) const {
    Numbered files = list(path);
    std::erase_if(files, [](const auto& entry) {
        std::error_code ignored;
        return std::filesystem::is_directory(
            std::filesystem::symlink_status(KyrCoreUtils::toPath(entry.second), ignored));
    });
    for (std::size_t i = 0; i + keptFiles < files.size(); ++i) {
        layer.unlink(files[i].second);
    }
}

} // namespace zel::storage
