#pragma once

#include "Change.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace inspection {

/// The keys that one connection watches, and whether it may see secrets. Socket's thread.
class Watcher {
public:
    virtual ~Watcher() = default;

    /// Adds keys and patterns; an empty list means every key.
    void addPatterns(const std::vector<std::wstring>& added);
    void clearPatterns();
    void setShowsSecrets(bool shown) { showsSecrets = shown; }
    bool wantsSecrets() const { return showsSecrets; }
    /// `names` are the names of one key.
    bool isInterestedIn(const std::vector<std::wstring>& names) const;

    /// Returns true if `count` events of `bytes` do not fit yet and the distribution must wait. The watcher calls
    /// ChangeFeed::resume() when it has read enough or its time is over.
    virtual bool needsTime(std::size_t bytes, std::size_t count) = 0;
    /// Sends the `count` events of a change, or counts them as lost if too many are queued.
    virtual void sendEvents(const std::shared_ptr<const std::string>& lines, std::size_t count) = 0;
    /// Counts events that were lost before they reached the watcher.
    virtual void addLost(std::size_t count) = 0;

private:
    std::vector<std::wstring> patterns;
    bool watchesAll = false;
    bool showsSecrets = false;
};

} // namespace inspection
