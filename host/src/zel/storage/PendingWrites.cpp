#include "PendingWrites.h"

#include "EncryptFileUtilsLogger.h"
#include "PathParts.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>

#include <utility>

namespace zel::storage {

namespace {

/// Copies the content. Returns nullopt if it cannot be protected or an allocation fails.
std::optional<PendingWrites::Kept> copyContent(const ProtectedText& content,
                                               PendingWrites::FileCategory category) noexcept {
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

class PendingWrites::Entry {
public:
    struct State {
        std::string path; ///< The spelling of the last writer.
        std::optional<WriteOutcome> lastWrite;
        std::optional<Kept> kept;
        std::uint64_t writes = 0; ///< Shows whether the path was written after extract().
    };

    State& getState(const PendingWrites& owner) LUMORA_REQUIRES(owner.mutex) {
        static_cast<void>(owner); // named for the analysis only
        return state;
    }
    const State& getState(const PendingWrites& owner) const LUMORA_REQUIRES(owner.mutex) {
        static_cast<void>(owner);
        return state;
    }

    KyrCoreUtils::AnnotatedMutex<> attemptMutex; ///< Held during an attempt.

private:
    State state;
};

PendingWrites::PendingWrites() = default;
PendingWrites::~PendingWrites() = default;

PendingWrites& PendingWrites::instance() {
    static PendingWrites writes;
    return writes;
}

bool PendingWrites::write(const std::string& path, const ProtectedText& content, FileCategory category,
                          const Attempt& attempt) {
    const auto entry = makeEntry(path);
    bool isKept = false;
    {
        const KyrCoreUtils::LockGuard attemptLock(entry->attemptMutex);
        const std::string cause = attempt(path, content, category);
        if (cause.empty()) {
            succeed(*entry);
            return true;
        }
        auto copy = copyContent(content, category);
        const bool isCopied = copy.has_value();
        isKept = fail(*entry, cause, std::move(copy));
        ZelLog(encryptFileUtilsLogger, ZelLogLevel::Error, ZEL_HERE,
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
    const KyrCoreUtils::LockGuard attemptLock(entry.attemptMutex);
    std::optional<Kept> kept;
    std::string path;
    std::string lastCause;
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        const auto& state = entry.getState(*this);
        kept = state.kept;
        path = state.path;
        lastCause = state.lastWrite ? state.lastWrite->cause : std::string();
    }
    if (!kept) {
        return;
    }
    const std::string cause = attempt(path, *kept->content, kept->category);
    if (cause.empty()) {
        succeed(entry);
        ZelLog(encryptFileUtilsLogger, ZelLogLevel::Info, ZEL_HERE,
               "Wrote protected file " + ZelLogger_replacePIIData(path) + " after an earlier failure");
        return;
    }
    fail(entry, cause, kept);
    if (cause != lastCause) { // a disk that stays full is reported once, not on every retry
        ZelLog(encryptFileUtilsLogger, ZelLogLevel::Error, ZEL_HERE,
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
    return extract(path).kept.has_value();
}

PendingWrites::Extracted PendingWrites::extract(const std::string& path) {
    Extracted extracted;
    extracted.entry = findEntry(path);
    if (extracted.entry) {
        const KyrCoreUtils::LockGuard attemptLock(extracted.entry->attemptMutex);
        extracted.kept = getKept(*extracted.entry);
        setKept(*extracted.entry, std::nullopt);
        const KyrCoreUtils::LockGuard lock(mutex);
        extracted.writes = extracted.entry->getState(*this).writes;
    }
    return extracted;
}

void PendingWrites::putBack(const Extracted& extracted) {
    if (!extracted.kept) {
        return;
    }
    const KyrCoreUtils::LockGuard attemptLock(extracted.entry->attemptMutex);
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        if (extracted.entry->getState(*this).writes != extracted.writes) {
            return;
        }
    }
    setKept(*extracted.entry, extracted.kept);
}

void PendingWrites::drop(FileCategory category) {
    for (const auto& entry : getBelow("")) {
        const KyrCoreUtils::LockGuard attemptLock(entry->attemptMutex);
        if (const auto kept = getKept(*entry); kept && kept->category == category) {
            setKept(*entry, std::nullopt);
        }
    }
}

void PendingWrites::giveUp(const std::string& directory) {
    for (const auto& entry : getBelow(directory)) {
        const KyrCoreUtils::LockGuard attemptLock(entry->attemptMutex);
        std::string lost;
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            const auto& state = entry->getState(*this);
            if (state.kept && state.lastWrite) {
                lost = ZelLogger_replacePIIData(state.path) + ", not written: " + state.lastWrite->cause;
            }
        }
        if (!lost.empty()) {
            setKept(*entry, std::nullopt);
            ZelLog(encryptFileUtilsLogger, ZelLogLevel::Error, ZEL_HERE, "Lost the content of protected file " + lost);
        }
    }
}

std::vector<PendingWrites::Record> PendingWrites::list(const std::string& directory) const {
    const std::string prefix = directoryPrefix(directory);
    std::vector<Record> records;
    const KyrCoreUtils::LockGuard lock(mutex);
    for (const auto& [spelling, entry] : entries) {
        const auto& state = entry->getState(*this);
        if (spelling.starts_with(prefix) && (state.lastWrite || state.kept)) {
            records.push_back({state.path, state.lastWrite, state.kept.has_value()});
        }
    }
    return records;
}

void PendingWrites::clear() {
    std::vector<std::optional<Kept>> forgotten; // destroyed after the unlock
    const KyrCoreUtils::LockGuard lock(mutex);
    for (const auto& [spelling, entry] : entries) {
        auto& state = entry->getState(*this);
        forgotten.emplace_back().swap(state.kept);
        state.lastWrite.reset();
    }
    pendingCount = 0;
}

void PendingWrites::setListener(std::function<void()> newListener) {
    const KyrCoreUtils::LockGuard lock(mutex);
    listener.swap(newListener);
}

std::shared_ptr<PendingWrites::Entry> PendingWrites::findEntry(const std::string& path) const {
    const std::string spelling = spellPath(path);
    const KyrCoreUtils::LockGuard lock(mutex);
    const auto found = entries.find(spelling);
    return found == entries.end() ? nullptr : found->second;
}

std::shared_ptr<PendingWrites::Entry> PendingWrites::makeEntry(const std::string& path) {
    const std::string spelling = spellPath(path);
    const KyrCoreUtils::LockGuard lock(mutex);
    auto& entry = entries[spelling];
    if (!entry) {
        entry = std::make_shared<Entry>();
    }
    entry->getState(*this).path = path;
    return entry;
}

/// Returns the entries of the paths at and below the directory, or all entries.
std::vector<std::shared_ptr<PendingWrites::Entry>> PendingWrites::getBelow(const std::string& directory) const {
    const std::string prefix = directoryPrefix(directory);
    std::vector<std::shared_ptr<Entry>> found;
    const KyrCoreUtils::LockGuard lock(mutex);
    for (const auto& [spelling, entry] : entries) {
        if (spelling.starts_with(prefix)) {
            found.push_back(entry);
        }
    }
    return found;
}

std::optional<PendingWrites::Kept> PendingWrites::getKept(const Entry& entry) const {
    const KyrCoreUtils::LockGuard lock(mutex);
    return entry.getState(*this).kept;
}

void PendingWrites::setKept(Entry& entry, std::optional<Kept> kept) {
    // The old content is destroyed after the unlock.
    const KyrCoreUtils::LockGuard lock(mutex);
    auto& state = entry.getState(*this);
    if (kept.has_value() != state.kept.has_value()) {
        kept ? ++pendingCount : --pendingCount;
    }
    state.kept.swap(kept);
}

void PendingWrites::succeed(Entry& entry) {
    setKept(entry, std::nullopt);
    const KyrCoreUtils::LockGuard lock(mutex);
    auto& state = entry.getState(*this);
    ++state.writes;
    state.lastWrite = {true, "", std::chrono::system_clock::now()};
}

/// Records the failure. Without new content the older pending content stays, because it is newer than the file on the
/// disk. Returns true if the entry has pending content.
bool PendingWrites::fail(Entry& entry, const std::string& cause, std::optional<Kept> kept) {
    if (kept) {
        setKept(entry, std::move(kept));
    }
    const KyrCoreUtils::LockGuard lock(mutex);
    auto& state = entry.getState(*this);
    ++state.writes;
    state.lastWrite = {false, cause, std::chrono::system_clock::now()};
    return state.kept.has_value();
}

void PendingWrites::notifyListener() {
    std::function<void()> called;
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        called = listener;
    }
    if (called) {
        called();
    }
}

} // namespace zel::storage
