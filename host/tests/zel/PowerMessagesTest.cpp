#include "windows/PowerMessages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ZelSystemMonitor::PowerEventHold;
using ZelSystemMonitor::PowerMessages;
using namespace ZelSystemMonitor::PowerEventTypeEnum;

class PowerMessagesTest : public testing::Test {
protected:
    std::vector<int> events;
    PowerEventHold kept;
    PowerMessages messages{[this](PowerEventType type, PowerEventHold hold) {
        events.push_back(type);
        kept = std::move(hold);
        if (kept) {
            releasing = std::thread([this] { kept.reset(); });
        }
    }};
    std::thread releasing;
};

TEST_F(PowerMessagesTest, SuspendAndResumeArePassedToTheReceiver) {
    EXPECT_EQ(messages.handle(WM_POWERBROADCAST, PBT_APMSUSPEND), TRUE);
    EXPECT_EQ(messages.handle(WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC), TRUE);
    EXPECT_THAT(events, ElementsAre(Suspend, Resume));
    EXPECT_EQ(kept, nullptr);
}

TEST_F(PowerMessagesTest, OtherPowerMessagesAreAnsweredButNotPassed) {
    EXPECT_EQ(messages.handle(WM_POWERBROADCAST, PBT_APMPOWERSTATUSCHANGE), TRUE);
    EXPECT_EQ(messages.handle(WM_QUERYENDSESSION, 0), TRUE);
    EXPECT_EQ(messages.handle(WM_NULL, 0), std::nullopt);
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(PowerMessagesTest, TheEndOfTheSessionIsAnsweredAfterTheHoldIsReleased) {
    EXPECT_EQ(messages.handle(WM_ENDSESSION, TRUE), 0);
    EXPECT_THAT(events, ElementsAre(PowerDown));
    releasing.join();
    EXPECT_EQ(kept, nullptr);
}

TEST_F(PowerMessagesTest, ASessionThatDoesNotEndCancelsTheShutdown) {
    EXPECT_EQ(messages.handle(WM_ENDSESSION, FALSE), 0);
    EXPECT_THAT(events, ElementsAre(ShutdownCancelled));
}

} // namespace
