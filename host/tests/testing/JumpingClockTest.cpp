#include <JumpingClock.h>

#include <chrono>
#include <ctime>

using testing_host::JumpingClock;

TEST(JumpingClockTest, SetsTheWallClockAndNotTheMonotonicOne) {
    using std::chrono::steady_clock;
    using std::chrono::system_clock;
    const auto day = std::chrono::hours(24);
    const auto wallBefore = system_clock::now();
    const auto steadyBefore = steady_clock::now();
    const auto secondsBefore = std::time(nullptr);
    {
        JumpingClock clock;
        clock.jump(-day);
        EXPECT_LT(system_clock::now(), wallBefore - day / 2);
        EXPECT_LT(std::time(nullptr), secondsBefore - 12 * 60 * 60);
        EXPECT_GE(steady_clock::now(), steadyBefore);
        EXPECT_LT(steady_clock::now(), steadyBefore + day / 2);
    }
    EXPECT_GE(system_clock::now(), wallBefore);
}
