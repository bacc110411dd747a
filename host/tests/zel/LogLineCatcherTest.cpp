#include <zel/LogLineCatcher.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

using zel::logging::LogLineCatcher;

namespace {

void log(const std::string& text, const char* logger = "Caught") {
    ZelLog(ZelLogger_getLogger(logger), ZelLogLevel::Info, ZEL_HERE, text);
}

} // namespace

TEST(LogLineCatcher, HoldsTheLastLineOfItsLogger) {
    const LogLineCatcher catcher("Caught");
    EXPECT_EQ(catcher.getText(), "");
    log("first");
    log("last");
    log("of another logger", "Other");
    EXPECT_EQ(catcher.getText(), "last");
}

TEST(LogLineCatcher, HoldsLinesOfOtherThreadsOnlyIfAllAreWanted) {
    const LogLineCatcher all("Caught");
    const LogLineCatcher own("Caught", LogLineCatcher::Threads::Calling);
    log("this thread");
    std::thread([] { log("another thread"); }).join();
    EXPECT_EQ(all.getText(), "another thread");
    EXPECT_EQ(own.getText(), "this thread");
}
