#pragma once

#include <zel/TimerSource.h>

#include <memory>
#include <mutex>
#include <thread>

namespace zel::common {

/// Alarms on the monotonic clock. All ring on one thread, which is started by the first of them.
class LUMORA_HOST_API TimerService final : public TimerSource {
public:
    TimerService();
    /// Forgets all alarms. Waits for the thread, unless it runs the destructor itself.
    ~TimerService() override;
    TimerService(const TimerService&) = delete;
    TimerService& operator=(const TimerService&) = delete;

    Alarm set(std::int64_t seconds, std::function<void()> ring) override;
    void cancel(Alarm alarm) override;

private:
    class Core;
    void requireThread();

    const std::shared_ptr<Core> core; ///< The thread holds it too.
    std::mutex threadMutex;           ///< Guards `thread`.
    std::thread thread;
};

} // namespace zel::common
