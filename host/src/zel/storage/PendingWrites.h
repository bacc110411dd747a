#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/EncryptFileUtils.h>
#include <zel/ProtectedText.h>
#include <zel/StorageHealth.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zel::storage {

/// Keeps the content of failed writes in memory until it is on the disk, and the outcome of the last write of each
/// path. Decides when content is dropped; an Attempt writes the file. Any thread.
///
/// Paths are physical. Different spellings of one path share one entry. Locks: each path has a lock that is held during
/// an attempt, so writes, retries and drops of one path run one after another; below it `mutex`, under which no other
/// lock is acquired.
class LUMORA_HOST_API PendingWrites {
public:
    using FileCategory = FileCategoryType::FileCategory;
    /// Writes the file. Returns the cause of a failure, "" on success.
    using Attempt = std::function<std::string(const std::string& path, const ProtectedText& content, FileCategory)>;

    struct Kept {
        std::shared_ptr<const ProtectedText> content;
        FileCategory category;
    };
    struct Record {
        std::string path;
        std::optional<WriteOutcome> lastWrite;
        bool pending;
    };
    /// Content that was removed by extract() and may be put back.
    class Extracted;

    PendingWrites();
    ~PendingWrites();
    PendingWrites(const PendingWrites&) = delete;
    PendingWrites& operator=(const PendingWrites&) = delete;

    /// Returns the instance that EncryptFileUtils, FileUtils, the factory and the profile lock share.
    static PendingWrites& instance();

    /// Attempts the write. Returns true on success. On failure logs path and cause and keeps a copy of `content`, which
    /// replaces older pending content.
    bool write(const std::string& path, const ProtectedText& content, FileCategory category, const Attempt& attempt);
    /// Attempts to write all pending content. Returns true if none is left.
    bool retry(const Attempt& attempt);

    /// Returns the pending content of `path`, if there is any.
    std::optional<Kept> find(const std::string& path) const;
    bool isEmpty() const noexcept { return pendingCount == 0; }

    /// Drops the pending content of `path`, after a running attempt. Returns false if there is none.
    bool drop(const std::string& path);
    /// Removes the pending content like drop() and returns it, so that putBack() can restore it.
    Extracted extract(const std::string& path);
    /// Restores the content, unless the path was written since extract().
    void putBack(const Extracted& extracted);
    /// Drops the pending content of one category, without a log line.
    void drop(FileCategory category);
    /// Drops all pending content at and below `directory` ("" for all) and logs an error for each path that loses
    /// content.
    void giveUp(const std::string& directory);

    /// Returns the records of the paths at and below `directory` that were written or have pending content, sorted.
    std::vector<Record> list(const std::string& directory) const;
    /// Removes all contents and outcomes, without a log line.
    void clear();

    /// Sets the listener that is called after content was kept, on the writer's thread and with no lock held.
    void setListener(std::function<void()> listener);

private:
    class Entry;
    using Entries = std::map<std::string, std::shared_ptr<Entry>>;

    std::shared_ptr<Entry> findEntry(const std::string& path) const LUMORA_EXCLUDES(mutex);
    std::shared_ptr<Entry> makeEntry(const std::string& path) LUMORA_EXCLUDES(mutex);
    std::vector<std::shared_ptr<Entry>> getBelow(const std::string& directory) const LUMORA_EXCLUDES(mutex);
    std::optional<Kept> getKept(const Entry& entry) const LUMORA_EXCLUDES(mutex);
    void setKept(Entry& entry, std::optional<Kept> kept) LUMORA_EXCLUDES(mutex);
    void succeed(Entry& entry) LUMORA_EXCLUDES(mutex);
    bool fail(Entry& entry, const std::string& cause, std::optional<Kept> kept) LUMORA_EXCLUDES(mutex);
    void retryOne(Entry& entry, const Attempt& attempt) LUMORA_EXCLUDES(mutex);
    void notifyListener() LUMORA_EXCLUDES(mutex);

    mutable KyrCoreUtils::AnnotatedMutex<> mutex; ///< Also guards the state of the entries.
    Entries entries LUMORA_GUARDED_BY(mutex);
    std::function<void()> listener LUMORA_GUARDED_BY(mutex);
    /// Changed only while `mutex` is held. Not annotated, because isEmpty() reads it without the lock before each read
    /// of a file.
    std::atomic<std::size_t> pendingCount = 0;
};

class PendingWrites::Extracted {
    friend class PendingWrites;
    std::shared_ptr<Entry> entry;
    std::optional<Kept> kept;
    std::uint64_t writes = 0;
};

} // namespace zel::storage
