#include <kyr/EndSignals.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>

namespace KyrCoreUtils {
namespace {

using namespace std::chrono_literals;

/// Runs each test in a separate process, because signal handlers belong to the process.
class EndSignalsDeathTest : public testing::Test {
protected:
    EndSignalsDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

/// Ends the process with 0 if `isMet`.
[[noreturn]] void exitWith(bool isMet) {
    std::_Exit(isMet ? 0 : 1);
}

void receiveASignal() {
    const EndSignals signals;
    const bool waitedInVain = !EndSignals::waitFor(1ms) && EndSignals::getReceived() == 0;
    std::raise(SIGTERM);
    std::array<char, 1> buffer{};
    EndSignals::wait();
    exitWith(waitedInVain && EndSignals::getReceived() == SIGTERM && EndSignals::waitFor(1h) &&
             EndSignals::readInput(buffer.data(), buffer.size()) == 0);
}

void raiseTwice() {
    const EndSignals signals;
    std::raise(SIGTERM);
    std::raise(SIGTERM);
    exitWith(true);
}

void endByTheSignal(bool isAcknowledged) {
    const EndSignals signals;
    std::raise(SIGTERM);
    if (isAcknowledged) {
        EndSignals::acknowledge();
    }
    EndSignals::endProcess();
    exitWith(isAcknowledged);
}

void raiseAfterDestruction() {
    { const EndSignals signals; }
    std::raise(SIGTERM);
    exitWith(true);
}

void raiseAnIgnoredSignal() {
    std::signal(SIGTERM, SIG_IGN);
    const EndSignals signals;
    std::raise(SIGTERM);
    exitWith(EndSignals::getReceived() == 0);
}

TEST_F(EndSignalsDeathTest, TheFirstSignalIsReceivedAndEndsWaitingAndReading) {
    EXPECT_EXIT(receiveASignal(), testing::ExitedWithCode(0), "");
}

TEST_F(EndSignalsDeathTest, ASecondSignalEndsTheProcess) {
    EXPECT_EXIT(raiseTwice(), testing::KilledBySignal(SIGTERM), "");
}

TEST_F(EndSignalsDeathTest, EndProcessEndsTheProcessByTheSignalUnlessItIsAcknowledged) {
    EXPECT_EXIT(endByTheSignal(false), testing::KilledBySignal(SIGTERM), "");
    EXPECT_EXIT(endByTheSignal(true), testing::ExitedWithCode(0), "");
}

TEST_F(EndSignalsDeathTest, TheDestructorRestoresThePreviousAction) {
    EXPECT_EXIT(raiseAfterDestruction(), testing::KilledBySignal(SIGTERM), "");
}

TEST_F(EndSignalsDeathTest, AnIgnoredSignalStaysIgnored) {
    EXPECT_EXIT(raiseAnIgnoredSignal(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace KyrCoreUtils
