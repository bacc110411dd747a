#include <zel/LogSink.h>
#include <zel/ZelLog.h>

#include <LogRecorder.h>
#include <TemporaryProfile.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <regex>
#include <stdexcept>
#include <thread>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing_host::LogRecorder;
using testing_host::readFile;
using testing_host::TemporaryProfile;
using zel::logging::LogRecord;

class FunctionSink final : public zel::logging::LogSink {
public:
    explicit FunctionSink(std::function<void(const LogRecord&)> function) : work(std::move(function)) {}
    void write(const LogRecord& record) override { work(record); }

private:
    std::function<void(const LogRecord&)> work;
};

/// Replaces each time stamp at the beginning of a line.
std::string withoutTimes(const std::string& lines) {
    static const std::regex time(R"((^|\n)\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )");
    return std::regex_replace(lines, time, "$1TIME ");
}

class ZelLogTest : public testing::Test {
protected:
    void TearDown() override { zel::logging::closeLogFiles(); }

    void write(ZelLogLevel level, std::string_view text) { ZelLog(logger, level, "src/File.cpp", 7, "ns::A::f", text); }

    ZelLogger& logger = ZelLogger_getLogger("Test");
};

std::filesystem::perms modeOf(const std::filesystem::path& path) {
    return std::filesystem::status(path).permissions() & std::filesystem::perms::mask;
}

constexpr auto ownersAlone = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;

TEST_F(ZelLogTest, ReturnsTheSameLoggerForAName) {
    EXPECT_EQ(&ZelLogger_getLogger("Test"), &logger);
    EXPECT_NE(&ZelLogger_getLogger("Other"), &logger);
}

TEST_F(ZelLogTest, PassesEveryPartOfALineToTheSink) {
    const LogRecorder recorder;
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

TEST_F(ZelLogTest, DoesNotInterpretTextAsAFormat) {
    const TemporaryProfile profile;
    const LogRecorder recorder;
    const auto path = profile.state() / "format.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Info, "{} {0} %s %n {");
    EXPECT_THAT(recorder.getTexts("Test"), ElementsAre("{} {0} %s %n {"));
    EXPECT_THAT(readFile(path), HasSubstr("{} {0} %s %n {\n"));
}

TEST_F(ZelLogTest, WritesWideTextAsUtf8) {
    const LogRecorder recorder;
    ZelLog(logger, ZelLogLevel::Info, "f", 1, "g", std::wstring_view(L"Gr\u00FC\u00DFe \u20AC"));
    EXPECT_THAT(recorder.getTexts("Test"), ElementsAre("Gr\xC3\xBC\xC3\x9F"
                                                       "e \xE2\x82\xAC"));
}

TEST_F(ZelLogTest, DropsDebugLinesUntilTheyAreEnabled) {
    const LogRecorder recorder;
    EXPECT_FALSE(ZelLog_isDebugEnabled(logger));
    write(ZelLogLevel::Debug, "unseen");
    ZelLog(logger, ZelLogLevel::Debug, "f", 1, "g", std::wstring_view(L"unseen"));
    zel::logging::setDebugEnabled(true);
    EXPECT_TRUE(ZelLog_isDebugEnabled(logger));
    write(ZelLogLevel::Debug, "seen");
    EXPECT_THAT(recorder.getTexts("Test"), ElementsAre("seen"));
}

TEST_F(ZelLogTest, WritesTheOtherLevelsWithoutDebug) {
    const LogRecorder recorder;
    write(ZelLogLevel::Error, "2");
    write(ZelLogLevel::Warning, "3");
    write(ZelLogLevel::Info, "4");
    EXPECT_THAT(recorder.getTexts("Test"), ElementsAre("2", "3", "4"));
}

TEST_F(ZelLogTest, SendsNothingToARemovedSink) {
    int lines = 0;
    const auto sink = std::make_shared<FunctionSink>([&](const LogRecord&) { ++lines; });
    zel::logging::addSink(sink);
    write(ZelLogLevel::Info, "one");
    zel::logging::removeSink(sink);
    write(ZelLogLevel::Info, "two");
    EXPECT_EQ(lines, 1);
    EXPECT_EQ(sink.use_count(), 1);
}

TEST_F(ZelLogTest, ASinkMayAddAndRemoveSinksWhileItWrites) {
    const LogRecorder recorder;
    std::shared_ptr<FunctionSink> sink;
    sink = std::make_shared<FunctionSink>([&](const LogRecord&) { zel::logging::removeSink(sink); });
    zel::logging::addSink(sink);
    write(ZelLogLevel::Info, "one");
    write(ZelLogLevel::Info, "two");
    EXPECT_EQ(recorder.getRecords().size(), 2U);
}

TEST_F(ZelLogTest, ASinkThatThrowsDoesNotAffectTheCallerAndOtherSinks) {
    const auto sink = std::make_shared<FunctionSink>([](const LogRecord&) { throw std::runtime_error("full"); });
    zel::logging::addSink(sink);
    const LogRecorder recorder;
    EXPECT_NO_THROW(write(ZelLogLevel::Info, "text"));
    EXPECT_THAT(recorder.getTexts("Test"), ElementsAre("text"));
    zel::logging::removeSink(sink);
}

TEST_F(ZelLogTest, CreatesALogFileWithMode0600) {
    const TemporaryProfile profile;
    const auto path = profile.state() / "deep" / "lumora.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Warning, "beware");
    EXPECT_EQ(modeOf(path), ownersAlone);
    EXPECT_THAT(readFile(path), MatchesRegex("....-..-.. ..:..:......? ?.* warning \\[Test\\] ns::A::f beware\n"));
}

TEST_F(ZelLogTest, RestrictsAnExistingLogFileToItsOwner) {
    const TemporaryProfile profile;
    const auto path = profile.state() / "old.log";
    testing_host::writeFile(path, "before\n");
    std::filesystem::permissions(path, std::filesystem::perms(0644));
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Info, "after");
    EXPECT_EQ(modeOf(path), ownersAlone);
    EXPECT_TRUE(readFile(path).starts_with("before\n"));
}

TEST_F(ZelLogTest, RotatesTheFileAndKeepsThreeOldOnes) {
    const TemporaryProfile profile;
    const auto path = profile.state() / "lumora.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    const std::string mebibyte(1024 * 1024, 'x');
    for (int line = 0; line < 30; ++line) {
        write(ZelLogLevel::Info, mebibyte);
    }
    for (const auto* name : {"lumora.log", "lumora.1.log", "lumora.2.log", "lumora.3.log"}) {
        EXPECT_LE(std::filesystem::file_size(profile.state() / name), 5U * 1024 * 1024);
        EXPECT_EQ(modeOf(profile.state() / name), ownersAlone) << name;
    }
    EXPECT_FALSE(std::filesystem::exists(profile.state() / "lumora.4.log"));
}

TEST_F(ZelLogTest, OpensTheSameFileOnce) {
    const TemporaryProfile profile;
    const auto path = profile.state() / "lumora.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Info, "line");
    const std::string content = readFile(path);
    EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), 1);
}

TEST_F(ZelLogTest, ClosesItsFilesOnRequest) {
    const TemporaryProfile profile;
    const auto path = profile.state() / "lumora.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    zel::logging::closeLogFiles();
    write(ZelLogLevel::Info, "unseen");
    EXPECT_EQ(readFile(path), "");
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    write(ZelLogLevel::Info, "seen");
    EXPECT_THAT(readFile(path), HasSubstr("seen"));
}

TEST_F(ZelLogTest, RefusesAFileThatCantBeOpened) {
    const TemporaryProfile profile;
    EXPECT_FALSE(zel::logging::logToFile(profile.state().string()));
    EXPECT_FALSE(zel::logging::logToFile(""));
    testing_host::writeFile(profile.state() / "file", "");
    EXPECT_FALSE(zel::logging::logToFile((profile.state() / "file" / "log").string()));
    std::filesystem::create_symlink(profile.state() / "file", profile.state() / "link.log");
    EXPECT_FALSE(zel::logging::logToFile((profile.state() / "link.log").string()));
}

TEST_F(ZelLogTest, WritesWarningsAndErrorsToStandardError) {
    testing::internal::CaptureStderr();
    zel::logging::logToStandardError(false);
    write(ZelLogLevel::Info, "quiet");
    write(ZelLogLevel::Warning, "loud");
    const std::string terse = testing::internal::GetCapturedStderr();
    EXPECT_THAT(terse, HasSubstr("loud"));
    EXPECT_THAT(terse, Not(HasSubstr("quiet")));

    testing::internal::CaptureStderr();
    zel::logging::logToStandardError(true);
    write(ZelLogLevel::Info, "once");
    const std::string verbose = testing::internal::GetCapturedStderr();
    EXPECT_EQ(verbose.find("once"), verbose.rfind("once"));
    EXPECT_THAT(verbose, HasSubstr("once"));
}

TEST_F(ZelLogTest, AFunctionReceivesEachLineInTheFormatOfAFile) {
    const TemporaryProfile profile;
    const auto path = profile.state() / "lines.log";
    ASSERT_TRUE(zel::logging::logToFile(path.string()));
    std::string lines;
    const auto sink = zel::logging::makeLineSink([&](std::string_view line) { lines += line; });
    zel::logging::addSink(sink);
    write(ZelLogLevel::Info, "first");
    write(ZelLogLevel::Error, "second");
    zel::logging::removeSink(sink);
    EXPECT_THAT(lines, HasSubstr(" info [Test] ns::A::f first\n"));
    EXPECT_THAT(lines, HasSubstr(" error [Test] ns::A::f second\n"));
    // Each sink reads the clock itself.
    EXPECT_EQ(withoutTimes(readFile(path)), withoutTimes(lines));
}

TEST_F(ZelLogTest, AcceptsLinesAndSinksFromSeveralThreads) {
    const LogRecorder recorder;
    constexpr int threadCount = 4;
    constexpr int lineCount = 200;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&] {
            const auto passing = std::make_shared<FunctionSink>([](const LogRecord&) {});
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
