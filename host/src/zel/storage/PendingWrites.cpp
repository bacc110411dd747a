#include "PendingWrites.h"

#include "EncryptFileUtilsLogger.h"
#include "PathParts.h"

#include <utility>

namespace zel::storage {

namespace {

ZelLogger& logger = encryptFileUtilsLogger();

/// Empty if the content can't be protected, or if there is no memory for it.
std::optional<PendingWrites::Kept> keep(const ProtectedText& content, PendingWrites::FileCategory category) noexcept {
    try {
        auto copy = content.copy();
        if (!copy || copy->isEmpty()) {
            return std::nullopt;
        }
        return PendingWrites::Kept{std::move(copy), category};
    } catch (...) {
        return std::nullopt;
    }
}

} // namespace

struct PendingWrites::Entry {
    std::mutex turn; ///< Held during an attempt.

    // Guarded by the mutex of PendingWrites.
    std::string path; ///< As the writer spelled it last.
    std::optional<WriteOutcome> lastWrite;
    std::optional<Kept> kept;
    std::uint64_t writes = 0; ///< Tells whether the path was written since content was taken out.
};

PendingWrites::PendingWrites() = default;
PendingWrites::~PendingWrites() = default;

PendingWrites& PendingWrites::ofProcess() {
    static PendingWrites writes;
    return writes;
}

bool PendingWrites::write(const std::string& path, const ProtectedText& content, FileCategory category,
                          const Attempt& attempt) {
    const auto entry = makeEntry(path);
    bool isKept = false;
    {
        const std::lock_guard turn(entry->turn);
        const std::string cause = attempt(path, content, category);
        if (cause.empty()) {
            succeed(*entry);
            return true;
        }
        auto copy = keep(content, category);
        const bool isCopied = copy.has_value();
        isKept = fail(*entry, cause, std::move(copy));
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE,
               "Failed to write protected file " + ZelLogger_replacePIIData(path) + ": " + cause +
                   (isCopied ? "; the content is kept and will be written again" : "; the content is not kept"));
    }
    if (isKept) {
        notifyListener();
    }
    return false;
}

bool PendingWrites::retry(const Attempt& attempt) {
    if (isEmpty()) {
        return true;
    }
    for (const auto& entry : getBelow("")) {
        retryOne(*entry, attempt);
    }
    return isEmpty();
}

void PendingWrites::retryOne(Entry& entry, const Attempt& attempt) {
    const std::lock_guard turn(entry.turn);
    std::optional<Kept> kept;
    std::string path;
    std::string lastCause;
    {
        const std::lock_guard lock(mutex);
        kept = entry.kept;
        path = entry.path;
        lastCause = entry.lastWrite ? entry.lastWrite->cause : std::string();
    }
    if (!kept) {
        return;
    }
    const std::string cause = attempt(path, *kept->content, kept->category);
    if (cause.empty()) {
        succeed(entry);
        ZelLog(logger, ZelLogLevel::Info, ZEL_HERE,
               "Wrote protected file " + ZelLogger_replacePIIData(path) + " after an earlier failure");
        return;
    }
    fail(entry, cause, kept);
    if (cause != lastCause) { // a disk that stays full is reported once, not at every retry
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE,
               "Failed again to write protected file " + ZelLogger_replacePIIData(path) + ": " + cause);
    }
}

std::optional<PendingWrites::Kept> PendingWrites::find(const std::string& path) const {
    if (isEmpty()) {
        return std::nullopt;
    }
    const auto entry = findEntry(path);
    return entry ? getKept(*entry) : std::nullopt;
}

bool PendingWrites::drop(const std::string& path) {
    return take(path).kept.has_value();
}

PendingWrites::Taken PendingWrites::take(const std::string& path) {
    Taken taken;
    taken.entry = findEntry(path);
    if (taken.entry) {
        const std::lock_guard turn(taken.entry->turn);
        taken.kept = getKept(*taken.entry);
        setKept(*taken.entry, std::nullopt);
        const std::lock_guard lock(mutex);
        taken.writes = taken.entry->writes;
    }
    return taken;
}

void PendingWrites::putBack(const Taken& taken) {
    if (!taken.kept) {
        return;
    }
    const std::lock_guard turn(taken.entry->turn);
    {
        const std::lock_guard lock(mutex);
        if (taken.entry->writes != taken.writes) {
            return;
        }
    }
    setKept(*taken.entry, taken.kept);
}

void PendingWrites::drop(FileCategory category) {
    for (const auto& entry : getBelow("")) {
        const std::lock_guard turn(entry->turn);
        if (const auto kept = getKept(*entry); kept && kept->category == category) {
            setKept(*entry, std::nullopt);
        }
    }
}

void PendingWrites::giveUp(const std::string& directory) {
    for (const auto& entry : getBelow(directory)) {
        const std::lock_guard turn(entry->turn);
        std::string lost;
        {
            const std::lock_guard lock(mutex);
            if (entry->kept && entry->lastWrite) {
                lost = ZelLogger_replacePIIData(entry->path) + ", not written: " + entry->lastWrite->cause;
            }
        }
        if (!lost.empty()) {
            setKept(*entry, std::nullopt);
            ZelLog(logger, ZelLogLevel::Error, ZEL_HERE, "Lost the content of protected file " + lost);
        }
    }
}

std::vector<PendingWrites::Record> PendingWrites::list(const std::string& directory) const {
    const std::string prefix = directoryPrefix(directory);
    std::vector<Record> records;
    const std::lock_guard lock(mutex);
    for (const auto& [spelling, entry] : entries) {
        if (spelling.starts_with(prefix) && (entry->lastWrite || entry->kept)) {
            records.push_back({entry->path, entry->lastWrite, entry->kept.has_value()});
        }
    }
    return records;
}

void PendingWrites::clear() {
    std::vector<std::optional<Kept>> forgotten; // goes after the unlock
    const std::lock_guard lock(mutex);
    for (const auto& [spelling, entry] : entries) {
        forgotten.emplace_back().swap(entry->kept);
        entry->lastWrite.reset();
    }
    pendingCount = 0;
}

void PendingWrites::setListener(std::function<void()> newListener) {
    const std::lock_guard lock(mutex);
    listener.swap(newListener);
}

std::shared_ptr<PendingWrites::Entry> PendingWrites::findEntry(const std::string& path) const {
    const std::string spelling = spellPath(path);
    const std::lock_guard lock(mutex);
    const auto found = entries.find(spelling);
    return found == entries.end() ? nullptr : found->second;
}

std::shared_ptr<PendingWrites::Entry> PendingWrites::makeEntry(const std::string& path) {
    const std::string spelling = spellPath(path);
    const std::lock_guard lock(mutex);
    auto& entry = entries[spelling];
    if (!entry) {
        entry = std::make_shared<Entry>();
    }
    entry->path = path;
    return entry;
}

/// Those of paths at and below the directory, or all of them.
std::vector<std::shared_ptr<PendingWrites::Entry>> PendingWrites::getBelow(const std::string& directory) const {
    const std::string prefix = directoryPrefix(directory);
    std::vector<std::shared_ptr<Entry>> found;
    const std::lock_guard lock(mutex);
    for (const auto& [spelling, entry] : entries) {
        if (spelling.starts_with(prefix)) {
            found.push_back(entry);
        }
    }
    return found;
}

std::optional<PendingWrites::Kept> PendingWrites::getKept(const Entry& entry) const {
    const std::lock_guard lock(mutex);
    return entry.kept;
}

void PendingWrites::setKept(Entry& entry, std::optional<Kept> kept) {
    // The former content goes after the unlock.
    const std::lock_guard lock(mutex);
    if (kept.has_value() != entry.kept.has_value()) {
        kept ? ++pendingCount : --pendingCount;
    }
    entry.kept.swap(kept);
}

void PendingWrites::succeed(Entry& entry) {
    setKept(entry, std::nullopt);
    const std::lock_guard lock(mutex);
    ++entry.writes;
    entry.lastWrite = {true, "", std::chrono::system_clock::now()};
}

/// Without new content what was kept before stays: it is newer than what the disk holds. Returns whether there is any.
bool PendingWrites::fail(Entry& entry, const std::string& cause, std::optional<Kept> kept) {
    if (kept) {
        setKept(entry, std::move(kept));
    }
    const std::lock_guard lock(mutex);
    ++entry.writes;
    entry.lastWrite = {false, cause, std::chrono::system_clock::now()};
    return entry.kept.has_value();
}

void PendingWrites::notifyListener() {
    std::function<void()> called;
    {
        const std::lock_guard lock(mutex);
        called = listener;
    }
    if (called) {
        called();
    }
}

} // namespace zel::storage
