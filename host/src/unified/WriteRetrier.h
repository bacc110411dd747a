#pragma once

#include <unified/TaskDispatcher.h>
#include <zel/BackgroundTimer.h>
#include <zel/HostExport.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>

namespace ZelUnified {

/// Lets the protected files write kept content again while a factory runs: on the background dispatcher's thread, after
/// a second at first and then after delays that double up to a minute. Made with make_shared. Any thread.
class LUMORA_HOST_API WriteRetrier final : public zel::common::BackgroundTimerCallback,
                                           public std::enable_shared_from_this<WriteRetrier> {
public:
    explicit WriteRetrier(std::weak_ptr<Processing::TaskDispatcher> dispatcher);
    ~WriteRetrier() override;
    WriteRetrier(const WriteRetrier&) = delete;
    WriteRetrier& operator=(const WriteRetrier&) = delete;

    /// From here on a failed write starts the timer.
    void start();
    /// Retries on the calling thread. Call it when the background dispatcher is flushed.
    static void retryNow();
    /// Stops the timer, retries on the calling thread for at most `limit`, then logs and drops what is not on the disk.
    void finish(std::chrono::milliseconds limit);

    void onTimer() override;

private:
    void onKept();
    void retryAndRearm();

    const std::weak_ptr<Processing::TaskDispatcher> background;
    std::mutex mutex; ///< Guards all below; never held during a retry.
    bool stopped = false;
    bool armed = false; ///< From the start of the timer to the end of the retry.
    std::int64_t delay = 0;
    zel::common::BackgroundTimer timer;
};

} // namespace ZelUnified
