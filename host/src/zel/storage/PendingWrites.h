#pragma once

#include <zel/EncryptFileUtils.h>
#include <zel/ProtectedText.h>
#include <zel/StorageHealth.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zel::storage {

/// Keeps the content of failed writes until it is on the disk, and the outcome of the last write of each path. It
/// decides when content is dropped; how a file is written is up to an Attempt. Any thread.
///
/// Paths are physical. Two spellings of one path meet. Locks: each path has a lock that is held during an attempt, so
/// writes, retries and drops of one path run one after another; then `mutex`, which is a leaf.
class LUMORA_HOST_API PendingWrites {
public:
    using FileCategory = FileCategoryType::FileCategory;
    /// Writes the file. Returns why it failed, "" on success.
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
    /// Content that was taken out and may be put back.
    class Taken;

    PendingWrites();
    ~PendingWrites();
    PendingWrites(const PendingWrites&) = delete;
    PendingWrites& operator=(const PendingWrites&) = delete;

    /// The one that EncryptFileUtils, FileUtils, the factory and the profile lock share.
    static PendingWrites& ofProcess();

    /// Attempts the write. On failure logs path and cause and keeps a copy of `content`, which replaces older content.
    bool write(const std::string& path, const ProtectedText& content, FileCategory category, const Attempt& attempt);
    /// Attempts to write all kept content. Returns true if none is left.
    bool retry(const Attempt& attempt);

    /// Returns the content that waits for `path`, if there is any.
    std::optional<Kept> find(const std::string& path) const;
    bool isEmpty() const noexcept { return pendingCount == 0; }

    /// Drops the content that waits for `path`, after a running attempt. Returns false if there was none.
    bool drop(const std::string& path);
    /// The same, in a way that can be undone.
    Taken take(const std::string& path);
    /// Keeps the content again, unless the path was written in the meantime.
    void putBack(const Taken& taken);
    /// Drops the content of one category, silently.
    void drop(FileCategory category);
    /// Drops all content at and below `directory` ("" for everywhere) and logs an error for each path that loses it.
    void giveUp(const std::string& directory);

    /// Returns the paths at and below `directory` that were written or wait to be, sorted.
    std::vector<Record> list(const std::string& directory) const;
    /// Forgets contents and outcomes, silently.
    void clear();

    /// `listener` is called after content was kept, on the writer's thread and with no lock held.
    void setListener(std::function<void()> listener);

private:
    struct Entry;
    using Entries = std::map<std::string, std::shared_ptr<Entry>>;

    std::shared_ptr<Entry> findEntry(const std::string& path) const;
    std::shared_ptr<Entry> makeEntry(const std::string& path);
    std::vector<std::shared_ptr<Entry>> getBelow(const std::string& directory) const;
    std::optional<Kept> getKept(const Entry& entry) const;
    void setKept(Entry& entry, std::optional<Kept> kept);
    void succeed(Entry& entry);
    bool fail(Entry& entry, const std::string& cause, std::optional<Kept> kept);
    void retryOne(Entry& entry, const Attempt& attempt);
    void notifyListener();

    mutable std::mutex mutex; ///< Guards all below and the entries, but for their locks.
    Entries entries;
    std::function<void()> listener;
    std::atomic<std::size_t> pendingCount = 0; ///< Changed under `mutex`.
};

class PendingWrites::Taken {
    friend class PendingWrites;
    std::shared_ptr<Entry> entry;
    std::optional<Kept> kept;
    std::uint64_t writes = 0;
};

} // namespace zel::storage
