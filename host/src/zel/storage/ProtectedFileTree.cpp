#include "ProtectedFileTree.h"

#include "PathParts.h"
#include "Quarantine.h"

#include <kyr/FileUtils.h>
#include <kyr/Paths.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string_view>
#include <utility>

namespace zel::storage {

namespace {

constexpr std::string_view extension = ".dat";
constexpr std::string_view localFile = "lumoraLocalConfig.dat";
constexpr std::string_view localBackupFile = "lumoraLocalConfig_backup.dat";
/// The name of a store, which follows, may contain separators.
constexpr std::string_view cachedCopies = "Cache/cached";

} // namespace

ProtectedFileTree::ProtectedFileTree(ProtectedFiles& access, std::string root)
    : files(access), directory(std::move(root)) {}

std::vector<ProtectedFileHealth> ProtectedFileTree::examine(const PendingWrites& writes) const {
    std::map<std::string, ProtectedFileHealth> found;
    for (const auto& path : listFiles()) {
        found[spellPath(path)].path = path;
    }
    for (auto& record : writes.list(directory)) {
        ProtectedFileHealth& file = found[spellPath(record.path)];
        file.lastWrite = std::move(record.lastWrite);
        file.pending = record.pending;
        if (file.path.empty()) {
            file.path = std::move(record.path);
        }
    }
    std::vector<ProtectedFileHealth> examined;
    for (auto& [spelling, file] : found) {
        file.state = files.examine(file.path, ProtectedFiles::categoryOf(file.path)).result;
        examined.push_back(std::move(file));
    }
    return examined;
}

void ProtectedFileTree::moveAsideUnusable() const {
    for (const auto& path : listFiles()) {
        files.moveAsideIfUnusable(path, ProtectedFiles::categoryOf(path));
    }
}

std::vector<KeptFile> ProtectedFileTree::listMovedAside() const {
    std::vector<std::string> all;
    KyrCoreUtils::FileUtils::getFilesFromDirectory(directory, "", all);
    std::map<std::pair<std::string, unsigned long>, std::string> kept; // lowest number first
    for (auto& path : all) {
        if (auto name = Quarantine::parse(path); name.original.ends_with(extension)) {
            kept[{std::move(name.original), name.number}] = std::move(path);
        }
    }
    std::vector<KeptFile> listed;
    for (auto& [name, path] : kept) {
        const ReadResult state = files.examine(path, ProtectedFiles::categoryOf(name.first)).result;
        listed.push_back({name.first, std::move(path), state});
    }
    return listed;
}

std::vector<std::string> ProtectedFileTree::listFiles() const {
    std::vector<std::string> found;
    KyrCoreUtils::FileUtils::getFilesFromDirectory(directory, "dat", found);
    std::erase_if(found, [this](const std::string& path) {
        return !path.ends_with(extension) || (!hasClientsName(path) && !files.hasHeader(path));
    });
    return found;
}

/// A damaged file may have lost its header, so only its name tells whose it is.
bool ProtectedFileTree::hasClientsName(const std::string& path) const {
    using KyrCoreUtils::toPath;
    const std::string name = KyrCoreUtils::toGenericText(toPath(path).lexically_relative(toPath(directory)));
    return name == localFile || name == localBackupFile || name.starts_with(cachedCopies);
}

} // namespace zel::storage
