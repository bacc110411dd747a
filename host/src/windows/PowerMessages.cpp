#include "PowerMessages.h"

#include <chrono>
#include <future>
#include <memory>
#include <utility>

namespace ZelSystemMonitor {

namespace {

constexpr std::chrono::seconds longestHold(4);

/// Its destructor ends the wait.
class Hold {
public:
    std::future<void> getEnd() { return end.get_future(); }
    ~Hold() { end.set_value(); }
    Hold() = default;
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

private:
    std::promise<void> end;
};

} // namespace

PowerMessages::PowerMessages(PowerEventReceiver eventReceiver) : receiver(std::move(eventReceiver)) {}

std::optional<LRESULT> PowerMessages::handle(UINT message, WPARAM parameter) {
    switch (message) {
    case WM_QUERYENDSESSION:
        return TRUE;
    case WM_ENDSESSION:
        if (parameter != FALSE) {
            passPowerDown();
        } else {
            receiver(PowerEventTypeEnum::ShutdownCancelled, nullptr);
        }
        return 0;
    case WM_POWERBROADCAST:
        if (parameter == PBT_APMSUSPEND) {
            receiver(PowerEventTypeEnum::Suspend, nullptr);
        } else if (parameter == PBT_APMRESUMEAUTOMATIC) {
            receiver(PowerEventTypeEnum::Resume, nullptr);
        }
        return TRUE;
    default:
        return std::nullopt;
    }
}

void PowerMessages::passPowerDown() {
    auto hold = std::make_shared<Hold>();
    const auto end = hold->getEnd();
    receiver(PowerEventTypeEnum::PowerDown, std::move(hold));
    end.wait_for(longestHold);
}

} // namespace ZelSystemMonitor
