#pragma once

#include <zel/TimerSource.h>

#include <memory>
#include <mutex>
#include <thread>

namespace zel::common {

/// Runs alarms on the monotonic clock. All alarms ring on one thread, which the first one starts.
class LUMORA_HOST_API TimerService final : public TimerSource {
public:
    TimerService();
    /// Cancels all alarms. Joins the thread, unless the destructor runs on it.
    ~TimerService() override;
    TimerService(const TimerService&) = delete;
    TimerService& operator=(const TimerService&) = delete;

    Alarm set(std::int64_t seconds, std::function<void()> ring) override;
    void cancel(Alarm alarm) override;

private:
    class Core;
    void requireThread();

    const std::shared_ptr<Core> core; ///< Shared with the thread.
    std::mutex threadMutex;           ///< Guards `thread`.
    std::thread thread;
};

} // namespace zel::common
