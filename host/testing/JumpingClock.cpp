#include "JumpingClock.h"

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <ctime>

namespace {

std::atomic<std::int64_t> offset = 0;

int askClock(clockid_t clock, timespec* moment) {
    const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, moment));
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)) {
        moment->tv_sec += offset;
    }
    return result;
}

} // namespace

// Replaces the library's functions, for all libraries of the process.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the library's names are reserved ones.
extern "C" {

__attribute__((visibility("default"))) int clock_gettime(clockid_t clock, timespec* moment) noexcept {
    return askClock(clock, moment);
}

__attribute__((visibility("default"))) int gettimeofday(timeval* moment, void* /*zone*/) noexcept {
    timespec exact{};
    const int result = askClock(CLOCK_REALTIME, &exact);
    *moment = {exact.tv_sec, exact.tv_nsec / 1000};
    return result;
}

__attribute__((visibility("default"))) time_t time(time_t* moment) noexcept {
    timespec exact{};
    askClock(CLOCK_REALTIME, &exact);
    if (moment != nullptr) {
        *moment = exact.tv_sec;
    }
    return exact.tv_sec;
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

namespace testing_host {

JumpingClock::~JumpingClock() {
    offset = 0;
}

void JumpingClock::jump(std::chrono::seconds by) {
    offset += by.count();
}

} // namespace testing_host
