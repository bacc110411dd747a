#pragma once

#include <string>

namespace ZelUnified {

/// A write that waits for its time.
class ConfigFileCacheTimerCallBack {
public:
    /// On the background dispatcher's thread, no lock held.
    virtual void onTimerFired() = 0;
    /// Names the file: requests for one name, case included, are merged. Any thread, under the timer's lock.
    virtual std::string getFileName() = 0;
    virtual ~ConfigFileCacheTimerCallBack() = default;
};

} // namespace ZelUnified
