#include "ZelLogFixture.h"

#include <algorithm>
#include <string>

namespace {

class LogSinkTest : public zel_log_test::ZelLogFixture {};

TEST_F(LogSinkTest, OpensTheSameFileOnce) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.state() / "lumora.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Info, "line");
    const std::string content = testing_host::readFile(path);
    EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), 1);
}

TEST_F(LogSinkTest, ClosesItsFilesOnRequest) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.state() / "lumora.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    zel::logging::closeLogFiles();
    write(ZelLogLevel::Info, "unseen");
    EXPECT_EQ(testing_host::readFile(path), "");
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Info, "seen");
    EXPECT_THAT(testing_host::readFile(path), testing::HasSubstr("seen"));
}

TEST_F(LogSinkTest, WritesWarningsAndErrorsToStandardError) {
    testing::internal::CaptureStderr();
    zel::logging::logToStandardError(false);
    write(ZelLogLevel::Info, "quiet");
    write(ZelLogLevel::Warning, "loud");
    const std::string terse = testing::internal::GetCapturedStderr();
    EXPECT_THAT(terse, testing::HasSubstr("loud"));
    EXPECT_THAT(terse, testing::Not(testing::HasSubstr("quiet")));

    testing::internal::CaptureStderr();
    zel::logging::logToStandardError(true);
    write(ZelLogLevel::Info, "once");
    const std::string verbose = testing::internal::GetCapturedStderr();
    EXPECT_EQ(verbose.find("once"), verbose.rfind("once"));
    EXPECT_THAT(verbose, testing::HasSubstr("once"));
}

} // namespace
