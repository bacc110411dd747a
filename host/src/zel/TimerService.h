#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/TimerSource.h>

#include <memory>
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
    KyrCoreUtils::AnnotatedMutex<> threadMutex;
    std::thread thread LUMORA_GUARDED_BY(threadMutex);
};

} // namespace zel::common
