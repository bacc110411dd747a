#pragma once

#include <string>

namespace ZelUnified {

/// A delayed write.
class ConfigFileCacheTimerCallBack {
public:
    /// Performs the write. Called on the background dispatcher's thread, with no lock held.
    virtual void onTimerFired() = 0;
    /// Returns the name of the file. Requests with the same name (case-sensitive) are merged. Any thread, called with
    /// the timer's lock held.
    virtual std::string getFileName() = 0;
    virtual ~ConfigFileCacheTimerCallBack() = default;
};

} // namespace ZelUnified
