#include "PathText.h"
#include "PlatformFiles.h"
#include "zel/storage/InMemoryFileLayer.h"
#include "zel/storage/PendingWrites.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/FileUtils.h>
#include <kyr/LockGuard.h>
#include <kyr/StringUtils.h>
#include <zel/FileLayer.h>
#include <zel/ZelLog.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

using zel::storage::InMemoryFileLayer;
using zel::storage::PendingWrites;

namespace KyrCoreUtils {

namespace {

/// Calls `operation` and converts an exception, which can only be a failed allocation, to an errno value.
template <class Operation>
int asErrorCode(Operation operation) noexcept {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return ENOMEM;
    } catch (...) {
        return EINVAL;
    }
}

bool existsNow(const fs::path& path) {
    const auto inMemory = InMemoryFileLayer::getActive();
    std::error_code error;
    return inMemory ? inMemory->exists(textFromPath(path)) : fs::exists(path, error);
}

/// Held while directories are created and their names synced. Otherwise another thread could find a directory whose
/// name is not synced yet, write a file into it and report success, and a power cut could remove the directory. Nothing
/// is logged meanwhile, because the log creates its directory with createDirectory() and would deadlock.
AnnotatedMutex<>& creationMutex() {
    static AnnotatedMutex<> mutex;
    return mutex;
}

/// Like existsNow(), but waits until the name of a directory that another thread creates is synced.
bool existsSynced(const fs::path& path) {
    if (!existsNow(path)) {
        return false;
    }
    std::error_code error;
    if (fs::is_directory(path, error)) {
        const LockGuard wait(creationMutex());
    }
    return true;
}

/// Unlike existsNow(), also finds a link on the disk that has no target.
bool isEntryNow(const fs::path& path) {
    const auto inMemory = InMemoryFileLayer::getActive();
    std::error_code error;
    return inMemory ? inMemory->exists(textFromPath(path)) : fs::exists(fs::symlink_status(path, error));
}

/// Syncs the directory of `path`, so that a power cut cannot revert the change of this name. Returns 0 or an errno
/// value. A directory that cannot be opened for reading is not synced.
int syncName(const fs::path& path) {
    const fs::path& named = path.has_filename() ? path : path.parent_path();
    const int error = zel::storage::FileLayer::disk().syncDirectory(textFromPath(named.parent_path()));
    return error == EACCES ? 0 : error;
}

void logUnsynced(const fs::path& path, int error) {
    ZelLog(ZelLogger_getLogger("Host-FileUtils"), ZelLogLevel::Warning, ZEL_HERE,
           "A power cut could revert the change of [" + textFromPath(path) +
               "], because its directory could not be synced: " + std::generic_category().message(error));
}

/// Syncs the directory of `path`. A failure is only logged, because the change has been made.
void syncNameOrLog(const fs::path& path) {
    if (const int error = syncName(path); error != 0) {
        logUnsynced(path, error);
    }
}

/// New directories whose names could not be synced, with the errno values.
using UnsyncedNames = std::vector<std::pair<fs::path, int>>;

int makeDirectory(const fs::path& path, UnsyncedNames& unsynced) {
    if (const auto inMemory = InMemoryFileLayer::getActive()) {
        return inMemory->createDirectory(textFromPath(path));
    }
    if (const int result = platform::makeDirectory(path); result != 0) {
        return result;
    }
    if (const int error = syncName(path); error != 0) {
        unsynced.emplace_back(path, error);
    }
    return 0;
}

int removeOne(const fs::path& path) {
    if (const auto inMemory = InMemoryFileLayer::getActive()) {
        return inMemory->unlink(textFromPath(path));
    }
    const int result = platform::removeFile(path);
    if (result == 0) {
        syncNameOrLog(path);
    }
    return result;
}

int moveOne(const fs::path& from, const fs::path& to, bool failIfExists) {
    if (const auto inMemory = InMemoryFileLayer::getActive()) {
        return failIfExists && existsNow(to) ? EEXIST : inMemory->rename(textFromPath(from), textFromPath(to));
    }
    if (const int result = platform::moveFile(from, to, failIfExists); result != 0) {
        return result;
    }
    syncNameOrLog(to);
    syncNameOrLog(from);
    return 0;
}

int createWithParents(const fs::path& path, UnsyncedNames& unsynced) {
    int result = makeDirectory(path, unsynced);
    if (result == ENOENT && path.has_parent_path() && path.parent_path() != path) {
        result = createWithParents(path.parent_path(), unsynced);
        if (result == 0) {
            result = makeDirectory(path, unsynced);
        }
    }
    std::error_code error;
    return result != 0 && fs::is_directory(path, error) ? 0 : result;
}

int createAlone(const fs::path& path, UnsyncedNames& unsynced) {
    const LockGuard lock(creationMutex());
    return createWithParents(path, unsynced);
}

bool hasExtension(const fs::path& file, const std::string& extension) {
    if (extension.empty()) {
        return true;
    }
    const std::string own = textFromPath(file.extension());
    return !own.empty() && caseInsensitiveStringEquals(std::string_view(own).substr(1), extension);
}

/// Appends the files of `directory` with the extension to `files` and its subdirectories to `pending`.
void listOne(const fs::path& directory, const std::string& extension, std::vector<std::string>& files,
             std::vector<fs::path>& pending) {
    std::error_code error;
    for (fs::directory_iterator entry(directory, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        std::error_code statusError;
        if (fs::is_directory(entry->symlink_status(statusError))) {
            pending.push_back(entry->path());
        } else if (hasExtension(entry->path(), extension)) {
            files.push_back(textFromPath(entry->path()));
        }
    }
}

} // namespace

std::string FileUtils::FileSeparator() {
    return {static_cast<char>(fs::path::preferred_separator)};
}

bool FileUtils::fileExists(const std::string& path) noexcept {
    return asErrorCode([&] {
               const auto file = pathFromText(path);
               return file && (existsSynced(*file) || PendingWrites::instance().find(path)) ? 0 : ENOENT;
           }) == 0;
}

int FileUtils::createDirectory(const std::string& path) noexcept {
    return asErrorCode([&] {
        const auto directory = pathFromText(path);
        if (!directory) {
            return ENOENT;
        }
        UnsyncedNames unsynced;
        const int result = createAlone(*directory, unsynced);
        for (const auto& [name, error] : unsynced) {
            logUnsynced(name, error);
        }
        return result;
    });
}

int FileUtils::removeFile(const std::string& path) noexcept {
    return asErrorCode([&] {
        const auto file = pathFromText(path);
        if (!file) {
            return ENOENT;
        }
        const bool waited = PendingWrites::instance().drop(path);
        const int result = removeOne(*file);
        return waited && result == ENOENT ? 0 : result;
    });
}

int FileUtils::moveFile(const std::string& source, const std::string& target, bool failIfExists) noexcept {
    return asErrorCode([&] {
        const auto from = pathFromText(source);
        const auto to = pathFromText(target);
        if (!from || !to) {
            return ENOENT;
        }
        auto& writes = PendingWrites::instance();
        const auto pendingAtSource = writes.extract(source);
        const auto pendingAtTarget = writes.extract(target);
        const int result = moveOne(*from, *to, failIfExists);
        if (result != 0) {
            writes.putBack(pendingAtTarget);
            if (isEntryNow(*from)) {
                writes.putBack(pendingAtSource);
            }
        }
        return result;
    });
}

std::string FileUtils::getFileName(const std::string& path) {
    const auto file = pathFromText(path);
    return file ? textFromPath(file->filename()) : std::string();
}

std::string FileUtils::getParentDirectory(const std::string& path) {
    const auto file = pathFromText(path);
    return file ? textFromPath(file->parent_path()) : std::string();
}

void FileUtils::getFilesFromDirectory(std::string directory, const std::string& extension,
                                      std::vector<std::string>& files) {
    files.clear();
    const auto start = pathFromText(directory);
    if (!start) {
        return;
    }
    const std::string wanted = extension.starts_with('.') ? extension.substr(1) : extension;
    std::vector<fs::path> pending{*start};
    while (!pending.empty()) {
        const fs::path next = std::move(pending.back());
        pending.pop_back();
        listOne(next, wanted, files, pending);
    }
    std::ranges::sort(files);
}

} // namespace KyrCoreUtils
