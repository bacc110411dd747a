#include <kyr/FstreamUtils.h>

#include <TemporaryProfile.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>

namespace {

namespace fs = std::filesystem;
using KyrCoreUtils::FstreamUtils;
using KyrCoreUtils::StreamMode;
using testing_host::readFile;
using testing_host::TemporaryProfile;
using testing_host::writeFile;

class FstreamUtilsTest : public testing::Test {
protected:
    void expectRefused(const fs::path& path, StreamMode mode) {
        EXPECT_FALSE(FstreamUtils::open(stream, path.string(), mode)) << path;
        EXPECT_FALSE(stream.is_open());
        EXPECT_TRUE(stream.fail());
    }

    const TemporaryProfile profile;
    const fs::path file = profile.root() / "file";
    std::fstream stream;
};

TEST_F(FstreamUtilsTest, ReadsBytesUnchanged) {
    const std::string content("a\r\nb\0c\x1A\n", 8);
    writeFile(file, content);
    ASSERT_TRUE(FstreamUtils::open(stream, file.string(), StreamMode::Read));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), content);
    EXPECT_EQ(readFile(file), content);
}

TEST_F(FstreamUtilsTest, ReadingDoesNotChangeTheFile) {
    writeFile(file, "old");
    ASSERT_TRUE(FstreamUtils::open(stream, file.string(), StreamMode::Read));
    stream << "new";
    stream.close();
    EXPECT_EQ(readFile(file), "old");
}

TEST_F(FstreamUtilsTest, WritingTruncatesAnExistingFile) {
    writeFile(file, "a long old content");
    ASSERT_TRUE(FstreamUtils::open(stream, file.string(), StreamMode::Write));
    stream << "new";
    stream.close();
    EXPECT_EQ(readFile(file), "new");
}

TEST_F(FstreamUtilsTest, WritingCreatesTheFile) {
    ASSERT_TRUE(FstreamUtils::open(stream, file.string(), StreamMode::Write));
    stream.close();
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(FstreamUtilsTest, ReopensAStreamAfterAFailure) {
    writeFile(file, "content");
    expectRefused(profile.root() / "absent", StreamMode::Read);
    ASSERT_TRUE(FstreamUtils::open(stream, file.string(), StreamMode::Read));
    EXPECT_TRUE(stream.good());
    expectRefused(profile.root() / "absent", StreamMode::Read);
}

TEST_F(FstreamUtilsTest, RefusesFoldersAndPathsOfNoFile) {
    for (const StreamMode mode : {StreamMode::Read, StreamMode::Write}) {
        expectRefused(profile.root(), mode);
        expectRefused("", mode);
        expectRefused(profile.root() / "no" / "folder", mode);
    }
}

TEST_F(FstreamUtilsTest, RefusesPipes) {
    for (const StreamMode mode : {StreamMode::Read, StreamMode::Write}) {
        // Opening a pipe blocks until its other end is opened.
        const fs::path pipe = profile.root() / "pipe";
        ::mkfifo(pipe.c_str(), 0600);
        expectRefused(pipe, mode);
    }
}

TEST_F(FstreamUtilsTest, RefusesAnInvalidMode) {
    writeFile(file, "content");
    expectRefused(file, static_cast<StreamMode>(0));
    expectRefused(file, static_cast<StreamMode>(8));
    EXPECT_EQ(readFile(file), "content");
}

} // namespace
