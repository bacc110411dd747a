#pragma once

#include <ConfigMap.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

namespace ZelUnified {

/// Numbers the announced changes, and recognises queued ones that are outdated. A change on the services dispatcher's
/// thread is applied at once, so it overtakes the queued changes of its key. Applied afterwards, they would put an
/// older value back into the record.
///
/// The numbers follow the order of the announcements, because the chain's lock is held during an announcement.
class AnnouncementOrder {
public:
    /// Returns the number of a change that the caller is about to queue. Any thread.
    std::uint64_t addQueued() noexcept;
    /// Records that the caller is about to apply a change of the key at once. Services dispatcher's thread.
    void addDirect(const std::wstring& key);
    /// Returns false if a later direct change of the key (case-insensitive) has overtaken the queued one. Call it once
    /// for each queued change, in the order of the queue. Services dispatcher's thread.
    bool takeQueued(const std::wstring& key, std::uint64_t number);

private:
    std::atomic<std::uint64_t> lastNumber = 0;
    std::atomic<std::uint64_t> lastQueued = 0;
    // The services dispatcher's thread owns the rest.
    std::uint64_t lastTaken = 0;
    /// The numbers of direct changes, by key. Empty while no change is queued.
    std::map<std::wstring, std::uint64_t, caseInsensitiveMapComparator> directNumbers;
};

} // namespace ZelUnified
