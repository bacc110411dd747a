#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace testing_host {

/// The changes that a power cut would revert: bytes of files that were not synced, and changes of names whose directory
/// was not synced. Supports regular files, links and new directories. Not thread-safe.
class UnsyncedChanges {
public:
    /// Records a change. Call it just before a change of a name, and after a change of bytes.
    void creating(const std::string& path);
    void renaming(const std::string& from, const std::string& to);
    void linking(const std::string& existing, const std::string& name);
    void unlinking(const std::string& path);
    void creatingDirectory(const std::string& path);
    /// Removes the last recorded change, because the operation failed.
    void dropLast();

    void written(const std::string& path, std::size_t count);
    void synced(const std::string& path);
    void syncedDirectory(const std::string& path);

    /// Returns the number of unsynced changes of names.
    std::size_t countNames() const { return names.size(); }
    /// Reverts all unsynced changes of names except the first `kept`, and all unsynced bytes.
    void revert(std::size_t kept);

private:
    struct File {
        std::size_t length = 0;
        std::size_t safeLength = 0;
    };
    using Files = std::map<std::string, std::shared_ptr<File>>;
    struct NameChange {
        std::string directory;
        Files filesBefore;
        std::function<void()> undo;
    };

    void remember(const std::string& path, std::function<void()> undo);

    Files files;
    std::vector<NameChange> names;
};

} // namespace testing_host
