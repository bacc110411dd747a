#include <zel/ZelLog.h>

#include <LogRecorder.h>

#include <string>

using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::LogRecorder;

namespace {

ZelLogger& first() {
    return ZelLogger_getLogger("LogRecorderTest-First");
}
ZelLogger& second() {
    return ZelLogger_getLogger("LogRecorderTest-Second");
}

} // namespace

TEST(LogRecorder, CollectsByLoggerAndByLevel) {
    LogRecorder log;
    ZelLog(first(), ZelLogLevel::Info, ZEL_HERE, "one");
    ZelLog(second(), ZelLogLevel::Error, ZEL_HERE, "two");
    ZelLog(first(), ZelLogLevel::Error, ZEL_HERE, "three");
    EXPECT_THAT(log.getTexts("LogRecorderTest-First"), ElementsAre("one", "three"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre("two", "three"));
    EXPECT_TRUE(log.mentions("wo"));
    EXPECT_FALSE(log.mentions("four"));
    log.clear();
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST(LogRecorder, EnablesDebugLinesOnRequestUntilItIsDestroyed) {
    {
        const LogRecorder log;
        EXPECT_FALSE(ZelLog_isDebugEnabled(first()));
    }
    {
        const LogRecorder log(LogRecorder::Debug::On);
        EXPECT_TRUE(ZelLog_isDebugEnabled(first()));
    }
    EXPECT_FALSE(ZelLog_isDebugEnabled(first()));
}

TEST(LogRecorder, RecordsNothingAfterItsDestruction) {
    const LogRecorder outer;
    { const LogRecorder inner; }
    ZelLog(first(), ZelLogLevel::Info, ZEL_HERE, "after");
    EXPECT_THAT(outer.getTexts(ZelLogLevel::Info), ElementsAre("after"));
}
