#pragma once

#include <kyr/AnnotatedMutex.h>
#include <unified/TaskDispatcher.h>
#include <zel/BackgroundTimer.h>
#include <zel/HostExport.h>

#include <chrono>
#include <cstdint>
#include <memory>

namespace ZelUnified {

/// Retries failed writes of protected files while a factory runs: on the background dispatcher's thread, first after
/// one second, then after delays that double up to one minute. Create it with make_shared. Any thread.
class LUMORA_HOST_API WriteRetrier final : public zel::common::BackgroundTimerCallback,
                                           public std::enable_shared_from_this<WriteRetrier> {
public:
    explicit WriteRetrier(std::weak_ptr<Processing::TaskDispatcher> dispatcher);
    ~WriteRetrier() override;
    WriteRetrier(const WriteRetrier&) = delete;
    WriteRetrier& operator=(const WriteRetrier&) = delete;

    /// Starts the timer on each failed write from here on.
    void start();
    /// Retries on the calling thread. Call it when the background dispatcher is flushed.
    static void retryNow();
    /// Stops the timer, retries on the calling thread for at most `limit`, then logs and drops the content that is not
    /// on the disk.
    void finish(std::chrono::milliseconds limit);

    void onTimer() override;

private:
    void onKept();
    void retryAndRearm();

    const std::weak_ptr<Processing::TaskDispatcher> background;
    KyrCoreUtils::AnnotatedMutex<> mutex; ///< Never held during a retry.
    bool stopped LUMORA_GUARDED_BY(mutex) = false;
    /// True from the start of the timer until the end of the retry.
    bool armed LUMORA_GUARDED_BY(mutex) = false;
    std::int64_t delay LUMORA_GUARDED_BY(mutex) = 0;
    zel::common::BackgroundTimer timer;
};

} // namespace ZelUnified
