#include "UnsyncedChanges.h"

#include "TemporaryProfile.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace testing_host {

namespace fs = std::filesystem;

namespace {

std::string parentOf(const std::string& path) {
    return fs::path(path).parent_path().string();
}

/// Returns a function that restores the current content of the file, the current link, or the absence of both.
std::function<void()> restorer(const std::string& path) {
    // Does not follow the link: it may be dangling or refer to itself.
    if (fs::is_symlink(fs::symlink_status(path))) {
        return [path, target = fs::read_symlink(path)] {
            fs::remove(path);
            fs::create_symlink(target, path);
        };
    }
    if (!fs::is_regular_file(path)) {
        return [path] { fs::remove(path); };
    }
    return [path, content = readFile(path)] {
        fs::remove(path);
        writeFile(path, content);
    };
}

} // namespace

void UnsyncedChanges::remember(const std::string& path, std::function<void()> undo) {
    names.push_back({parentOf(path), files, std::move(undo)});
}

void UnsyncedChanges::creating(const std::string& path) {
    remember(path, [path] { fs::remove(path); });
    files[path] = std::make_shared<File>();
}

void UnsyncedChanges::renaming(const std::string& from, const std::string& to) {
    remember(to, [from, to, restoreTarget = restorer(to)] {
        fs::rename(to, from);
        restoreTarget();
    });
    files.erase(to);
    if (auto moved = files.extract(from)) {
        moved.key() = to;
        files.insert(std::move(moved));
    }
}

void UnsyncedChanges::linking(const std::string& existing, const std::string& name) {
    remember(name, [name] { fs::remove(name); });
    if (const auto file = files.find(existing); file != files.end()) {
        files[name] = file->second;
    }
}

void UnsyncedChanges::unlinking(const std::string& path) {
    remember(path, restorer(path));
    files.erase(path);
}

void UnsyncedChanges::creatingDirectory(const std::string& path) {
    remember(path, [path] { fs::remove_all(path); });
}

void UnsyncedChanges::dropLast() {
    files = std::move(names.back().filesBefore);
    names.pop_back();
}

void UnsyncedChanges::written(const std::string& path, std::size_t count) {
    if (const auto file = files.find(path); file != files.end()) {
        file->second->length += count;
    }
}

void UnsyncedChanges::synced(const std::string& path) {
    if (const auto file = files.find(path); file != files.end()) {
        file->second->safeLength = file->second->length;
    }
}

void UnsyncedChanges::syncedDirectory(const std::string& path) {
    std::erase_if(names, [&](const NameChange& change) { return change.directory == path; });
}

void UnsyncedChanges::revert(std::size_t kept) {
    while (names.size() > kept) {
        names.back().undo();
        dropLast();
    }
    names.clear();
    for (const auto& [path, file] : files) {
        if (file->safeLength < file->length && fs::is_regular_file(path)) {
            fs::resize_file(path, file->safeLength);
        }
    }
    files.clear();
}

} // namespace testing_host
