#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace testing_host {

/// What a power cut would take back: bytes of files that were not synced, and changes of names whose directory was not.
/// Knows regular files, links and new directories. Not thread-safe.
class UnsyncedChanges {
public:
    /// Tell of each change just before it is made, those of names; of bytes, after it.
    void creating(const std::string& path);
    void renaming(const std::string& from, const std::string& to);
    void linking(const std::string& existing, const std::string& name);
    void unlinking(const std::string& path);
    void creatingDirectory(const std::string& path);
    /// The change told of last was not made after all.
    void dropLast();

    void written(const std::string& path, std::size_t count);
    void synced(const std::string& path);
    void syncedDirectory(const std::string& path);

    /// Changes of names that are not safe yet.
    std::size_t countNames() const { return names.size(); }
    /// Takes back all but the first `kept` of them, and all bytes that are not safe.
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
