#include "ZelLogFixture.h"

namespace {

class ZelLogTest : public zel_log_test::ZelLogFixture {};

TEST_F(ZelLogTest, ReturnsTheSameLoggerForAName) {
    EXPECT_EQ(&ZelLogger_getLogger("Test"), &logger);
    EXPECT_NE(&ZelLogger_getLogger("Other"), &logger);
}

TEST_F(ZelLogTest, PassesEveryPartOfALineToTheSink) {
    const testing_host::LogRecorder recorder;
    write(ZelLogLevel::Error, "failed");
    const auto records = recorder.getRecords();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].logger, "Test");
    EXPECT_EQ(records[0].level, ZelLogLevel::Error);
    EXPECT_EQ(records[0].file, "src/File.cpp");
    EXPECT_EQ(records[0].line, 7);
    EXPECT_EQ(records[0].function, "ns::A::f");
    EXPECT_EQ(records[0].text, "failed");
}

TEST_F(ZelLogTest, WritesWideTextAsUtf8) {
    const testing_host::LogRecorder recorder;
    ZelLog(logger, ZelLogLevel::Info, "f", 1, "g", std::wstring_view(L"Gr\u00FC\u00DFe \u20AC"));
    EXPECT_THAT(recorder.getTexts("Test"), testing::ElementsAre("Gr\xC3\xBC\xC3\x9F"
                                                                "e \xE2\x82\xAC"));
}

TEST_F(ZelLogTest, WritesTheOtherLevelsWithoutDebug) {
    const testing_host::LogRecorder recorder;
    write(ZelLogLevel::Error, "2");
    write(ZelLogLevel::Warning, "3");
    write(ZelLogLevel::Info, "4");
    EXPECT_THAT(recorder.getTexts("Test"), testing::ElementsAre("2", "3", "4"));
}

} // namespace
