#include "FipsMode.h"

#include <zel/FipsUtils.h>

#include <atomic>

namespace zel::common {

namespace {

enum class Mode : int { Unknown, Off, On };

std::atomic<Mode>& knownMode() noexcept {
    static constinit std::atomic<Mode> mode{Mode::Unknown};
    return mode;
}

Mode modeOf(bool enabled) noexcept {
    return enabled ? Mode::On : Mode::Off;
}

} // namespace

bool FipsUtils::isFipsEnabled() noexcept {
    Mode mode = knownMode().load(std::memory_order_relaxed);
    if (mode == Mode::Unknown) {
        const Mode machine = modeOf(readFipsMode());
        // Keeps an override that was set in the meantime.
        mode = knownMode().compare_exchange_strong(mode, machine) ? machine : mode;
    }
    return mode == Mode::On;
}

void FipsUtils::overrideFipsMode(std::optional<bool> enabled) noexcept {
    knownMode().store(enabled ? modeOf(*enabled) : Mode::Unknown);
}

} // namespace zel::common
