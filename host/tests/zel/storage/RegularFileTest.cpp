#include "StorageProfile.h"

#include <zel/RegularFile.h>

#include <PrivateFiles.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <string>

namespace {

using testing::ElementsAre;
using testing_host::namesIn;
using testing_host::readFile;
using testing_host::writeFile;
using zel::storage::RegularFile;

namespace fs = std::filesystem;

struct RegularFileTest : testing::Test {
    testing_host::TemporaryProfile profile;
    const fs::path folder = profile.root() / "folder";
    const fs::path file = folder / "report.xml";

    RegularFileTest() { fs::create_directories(folder); }
};

} // namespace

TEST_F(RegularFileTest, ReplaceCreatesAFileWithMode0600) {
    ASSERT_EQ(RegularFile::replace(file.string(), "content"), 0);
    EXPECT_EQ(readFile(file), "content");
    EXPECT_TRUE(testing_host::isPrivate(file));
    EXPECT_THAT(namesIn(folder), ElementsAre("report.xml"));
}

TEST_F(RegularFileTest, AnOpenReaderStillReadsTheOldContentAfterReplace) {
    writeFile(file, "old");
    testing_host::letEverybodyRead(file);
    std::ifstream reader(file);
    ASSERT_EQ(RegularFile::replace(file.string(), "new content"), 0);
    std::string seen;
    std::getline(reader, seen);
    EXPECT_EQ(seen, "old");
    EXPECT_EQ(readFile(file), "new content");
    EXPECT_TRUE(testing_host::isPrivate(file));
}

TEST_F(RegularFileTest, ReplaceRefusesAFolder) {
    EXPECT_EQ(RegularFile::replace(folder.string(), "content"), EEXIST);
    EXPECT_THAT(namesIn(folder), testing::IsEmpty());
}

TEST_F(RegularFileTest, ReplaceRefusesFilesThatAreNotRegular) {
    const auto pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto link = folder / "link";
    fs::create_symlink(pipe, link);
    for (const auto& path : {folder, pipe, link}) {
        EXPECT_EQ(RegularFile::replace(path.string(), "content"), EEXIST) << path;
    }
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_THAT(namesIn(folder), ElementsAre("link", "pipe"));
}

TEST_F(RegularFileTest, ReplaceOfALinkReplacesItsTarget) {
    writeFile(profile.root() / "elsewhere" / "target.xml", "old");
    fs::create_symlink("../elsewhere/target.xml", folder / "first");
    fs::create_symlink("first", file);
    ASSERT_EQ(RegularFile::replace(file.string(), "new"), 0);
    EXPECT_EQ(readFile(profile.root() / "elsewhere" / "target.xml"), "new");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_symlink(folder / "first"));
}

TEST_F(RegularFileTest, ReplaceOfADanglingLinkCreatesItsTarget) {
    fs::create_directory(profile.root() / "elsewhere");
    fs::create_symlink("../elsewhere/target.xml", folder / "first");
    fs::create_symlink("first", file);
    ASSERT_EQ(RegularFile::replace(file.string(), "new"), 0);
    EXPECT_EQ(readFile(profile.root() / "elsewhere" / "target.xml"), "new");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_symlink(folder / "first"));
}

TEST_F(RegularFileTest, ReplaceOfALinkToItselfReturnsTheReason) {
    fs::create_symlink("circle", folder / "circle");
    EXPECT_EQ(RegularFile::replace((folder / "circle").string(), "x"), ELOOP);
}

TEST_F(RegularFileTest, ReplaceReturnsTheReasonOfAFailure) {
    EXPECT_EQ(RegularFile::replace((folder / "absent" / "x").string(), "x"), ENOENT);
    EXPECT_EQ(RegularFile::replace("", "x"), EINVAL);
}
