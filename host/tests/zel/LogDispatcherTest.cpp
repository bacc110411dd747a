#include "ZelLogFixture.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

class LogDispatcherTest : public zel_log_test::ZelLogFixture {};

TEST_F(LogDispatcherTest, DropsDebugLinesUntilTheyAreEnabled) {
    const testing_host::LogRecorder recorder;
    EXPECT_FALSE(ZelLog_isDebugEnabled(logger));
    write(ZelLogLevel::Debug, "unseen");
    ZelLog(logger, ZelLogLevel::Debug, "f", 1, "g", std::wstring_view(L"unseen"));
    zel::logging::setDebugEnabled(true);
    EXPECT_TRUE(ZelLog_isDebugEnabled(logger));
    write(ZelLogLevel::Debug, "seen");
    EXPECT_THAT(recorder.getTexts("Test"), testing::ElementsAre("seen"));
}

TEST_F(LogDispatcherTest, SendsNothingToARemovedSink) {
    int lines = 0;
    const auto sink = std::make_shared<zel_log_test::FunctionSink>([&](const zel::logging::LogRecord&) { ++lines; });
    zel::logging::addSink(sink);
    write(ZelLogLevel::Info, "one");
    zel::logging::removeSink(sink);
    write(ZelLogLevel::Info, "two");
    EXPECT_EQ(lines, 1);
    EXPECT_EQ(sink.use_count(), 1);
}

TEST_F(LogDispatcherTest, ASinkMayAddAndRemoveSinksWhileItWrites) {
    const testing_host::LogRecorder recorder;
    std::shared_ptr<zel_log_test::FunctionSink> sink;
    sink = std::make_shared<zel_log_test::FunctionSink>(
        [&](const zel::logging::LogRecord&) { zel::logging::removeSink(sink); });
    zel::logging::addSink(sink);
    write(ZelLogLevel::Info, "one");
    write(ZelLogLevel::Info, "two");
    EXPECT_EQ(recorder.getRecords().size(), 2U);
}

TEST_F(LogDispatcherTest, ASinkThatThrowsDoesNotAffectTheCallerAndOtherSinks) {
    const auto sink = std::make_shared<zel_log_test::FunctionSink>(
        [](const zel::logging::LogRecord&) { throw std::runtime_error("full"); });
    zel::logging::addSink(sink);
    const testing_host::LogRecorder recorder;
    EXPECT_NO_THROW(write(ZelLogLevel::Info, "text"));
    EXPECT_THAT(recorder.getTexts("Test"), testing::ElementsAre("text"));
    zel::logging::removeSink(sink);
}

TEST_F(LogDispatcherTest, AcceptsLinesAndSinksFromSeveralThreads) {
    const testing_host::LogRecorder recorder;
    constexpr int threadCount = 4;
    constexpr int lineCount = 200;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&] {
            const auto passing = std::make_shared<zel_log_test::FunctionSink>([](const zel::logging::LogRecord&) {});
            for (int line = 0; line < lineCount; ++line) {
                zel::logging::addSink(passing);
                ZelLog(ZelLogger_getLogger("Thread"), ZelLogLevel::Info, ZEL_HERE, "line");
                zel::logging::removeSink(passing);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(recorder.getTexts("Thread").size(), std::size_t{threadCount} * lineCount);
}

} // namespace
