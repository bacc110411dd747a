#include "ZelLogFixture.h"

#include <Patterns.h>
#include <PrivateFiles.h>

#include <regex>
#include <string>

namespace {

/// Replaces each time stamp at the beginning of a line.
std::string withoutTimes(const std::string& lines) {
    static const std::regex time(R"((^|\n)\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )");
    return std::regex_replace(lines, time, "$1TIME ");
}

class SpdlogSinkTest : public zel_log_test::ZelLogFixture {};

TEST_F(SpdlogSinkTest, DoesNotInterpretTextAsAFormat) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder recorder;
    const auto path = profile.state() / "format.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Info, "{} {0} %s %n {");
    EXPECT_THAT(recorder.getTexts("Test"), testing::ElementsAre("{} {0} %s %n {"));
    EXPECT_THAT(testing_host::readFile(path), testing::HasSubstr("{} {0} %s %n {\n"));
}

TEST_F(SpdlogSinkTest, CreatesALogFileWithMode0600) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.state() / "deep" / "lumora.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Warning, "beware");
    EXPECT_TRUE(testing_host::isPrivate(path));
    EXPECT_THAT(testing_host::readFile(path),
                testing_host::MatchesRegex("....-..-.. ..:..:......? ?.* warning \\[Test] ns::A::f beware\n"));
}

TEST_F(SpdlogSinkTest, RestrictsAnExistingLogFileToItsOwner) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.state() / "old.log";
    testing_host::writeFile(path, "before\n");
    testing_host::letEverybodyRead(path);
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Info, "after");
    EXPECT_TRUE(testing_host::isPrivate(path));
    EXPECT_TRUE(testing_host::readFile(path).starts_with("before\n"));
}

TEST_F(SpdlogSinkTest, RotatesTheFileAndKeepsThreeOldOnes) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.state() / "lumora.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    const std::string mebibyte(1024 * 1024, 'x');
    for (int line = 0; line < 30; ++line) {
        write(ZelLogLevel::Info, mebibyte);
    }
    for (const auto* name : {"lumora.log", "lumora.1.log", "lumora.2.log", "lumora.3.log"}) {
        EXPECT_LE(std::filesystem::file_size(profile.state() / name), 5U * 1024 * 1024);
        EXPECT_TRUE(testing_host::isPrivate(profile.state() / name)) << name;
    }
    EXPECT_FALSE(std::filesystem::exists(profile.state() / "lumora.4.log"));
}

TEST_F(SpdlogSinkTest, RefusesAFileThatCannotBeOpened) {
    const testing_host::TemporaryProfile profile;
    EXPECT_FALSE(zel::logging::logToFile(profile.state().string()));
    EXPECT_FALSE(zel::logging::logToFile(""));
    testing_host::writeFile(profile.state() / "file", "");
    EXPECT_FALSE(zel::logging::logToFile((profile.state() / "file" / "log").string()));
}

TEST_F(SpdlogSinkTest, RefusesALink) {
    const testing_host::TemporaryProfile profile;
    testing_host::writeFile(profile.state() / "file", "");
    std::filesystem::create_symlink(profile.state() / "file", profile.state() / "link.log");
    EXPECT_FALSE(zel::logging::logToFile((profile.state() / "link.log").string()));
}

TEST_F(SpdlogSinkTest, AFunctionReceivesEachLineInTheFormatOfAFile) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.state() / "lines.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    std::string lines;
    const auto sink = zel::logging::makeLineSink([&](std::string_view line) { lines += line; });
    zel::logging::addSink(sink);
    write(ZelLogLevel::Info, "first");
    write(ZelLogLevel::Error, "second");
    zel::logging::removeSink(sink);
    EXPECT_THAT(lines, testing::HasSubstr(" info [Test] ns::A::f first\n"));
    EXPECT_THAT(lines, testing::HasSubstr(" error [Test] ns::A::f second\n"));
    // Each sink reads the clock itself.
    EXPECT_EQ(withoutTimes(testing_host::readFile(path)), withoutTimes(lines));
}

} // namespace
