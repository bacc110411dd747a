#pragma once

#include <ConfigMap.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

namespace ZelUnified {

/// Numbers the announced changes and detects queued changes that are outdated. A change on the services dispatcher's
/// thread is applied immediately, before earlier queued changes of the same key. Applying those later would restore an
/// older value in the record.
///
/// The numbers follow the order of the announcements, because the chain's lock is held during an announcement.
class AnnouncementOrder {
public:
    /// Returns the number of a change that the caller is about to queue. Any thread.
    std::uint64_t addQueued() noexcept;
    /// Records that the caller is about to apply a change of the key immediately. Services dispatcher's thread.
    void addDirect(const std::wstring& key);
    /// Removes a queued change, which the caller is about to apply. Returns false if the change is outdated, because a
    /// later direct change of the key (case-insensitive) was already applied. Call once for each queued change, in the
    /// order of the queue. Services dispatcher's thread.
    bool removeQueued(const std::wstring& key, std::uint64_t number);

private:
    std::atomic<std::uint64_t> lastNumber = 0;
    std::atomic<std::uint64_t> lastQueued = 0;
    // Only the services dispatcher's thread uses the members below.
    std::uint64_t lastRemoved = 0;
    /// The numbers of direct changes, by key. Empty while no change is queued.
    std::map<std::wstring, std::uint64_t, caseInsensitiveMapComparator> directNumbers;
};

} // namespace ZelUnified
