#include <kyr/FileAccess.h>
#include <kyr/FileUtils.h>

#include <OtherFileSystem.h>
#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace {

namespace fs = std::filesystem;
using KyrCoreUtils::FileUtils;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::readFile;
using testing_host::TemporaryProfile;
using testing_host::writeFile;
using namespace std::string_literals;

class FileUtilsTest : public testing::Test {
protected:
    fs::path at(const std::string& name) const { return profile.root() / name; }
    std::string textAt(const std::string& name) const { return at(name).string(); }

    std::vector<std::string> list(const std::string& extension) const {
        std::vector<std::string> files{"left over"};
        FileUtils::getFilesFromDirectory(textAt("tree"), extension, files);
        std::vector<std::string> names;
        for (const auto& file : files) {
            names.push_back(fs::path(file).lexically_relative(at("tree")).string());
        }
        return names;
    }

    const TemporaryProfile profile;
};

fs::perms modeOf(const fs::path& path) {
    return fs::status(path).permissions() & fs::perms::mask;
}

TEST_F(FileUtilsTest, ReportsWhetherAFileOrDirectoryExists) {
    writeFile(at("file"), "");
    EXPECT_TRUE(FileUtils::fileExists(textAt("file")));
    EXPECT_TRUE(FileUtils::fileExists(profile.root().string()));
    EXPECT_FALSE(FileUtils::fileExists(textAt("absent")));
    EXPECT_FALSE(FileUtils::fileExists(textAt("file/below")));
    EXPECT_FALSE(FileUtils::fileExists(""));
    EXPECT_FALSE(FileUtils::fileExists(textAt("file") + "\0x"s));
    EXPECT_FALSE(FileUtils::fileExists(std::string(100000, 'x')));
}

TEST_F(FileUtilsTest, NamesAreUtf8) {
    const std::string name = textAt("Gr\xC3\xBC\xC3\x9F"
                                    "e");
    writeFile(name, "x");
    EXPECT_TRUE(FileUtils::fileExists(name));
    EXPECT_EQ(FileUtils::removeFile(name), 0);
    EXPECT_FALSE(fs::exists(name));
}

TEST_F(FileUtilsTest, CreatesMissingDirectoriesWithMode0700) {
    EXPECT_EQ(FileUtils::createDirectory(textAt("a/b/c")), 0);
    for (const auto* name : {"a", "a/b", "a/b/c"}) {
        EXPECT_TRUE(testing_host::isPrivate(at(name))) << name;
    }
    EXPECT_EQ(FileUtils::createDirectory(textAt("a/b/c")), 0);
    EXPECT_EQ(FileUtils::createDirectory(textAt("d/e/")), 0);
    EXPECT_TRUE(fs::is_directory(at("d/e")));
}

TEST_F(FileUtilsTest, DoesNotChangeTheModeOfExistingDirectories) {
    fs::create_directory(at("open"));
    testing_host::letEverybodyWrite(at("open"));
    const auto mode = FileAccess::readMode(textAt("open"));
    EXPECT_EQ(FileUtils::createDirectory(textAt("open/inner")), 0);
    EXPECT_EQ(FileAccess::readMode(textAt("open")), mode);
    EXPECT_TRUE(FileAccess::read(textAt("open"))->writableByEverybody);
    EXPECT_TRUE(testing_host::isPrivate(at("open/inner")));
}

TEST_F(FileUtilsTest, ReturnsTheReasonIfADirectoryCannotBeCreated) {
    writeFile(at("file"), "");
    EXPECT_EQ(FileUtils::createDirectory(textAt("file")), EEXIST);
    EXPECT_EQ(FileUtils::createDirectory(textAt("file/below")), ENOTDIR);
    EXPECT_EQ(FileUtils::createDirectory(""), ENOENT);
    EXPECT_EQ(FileUtils::createDirectory(textAt(std::string(1000, 'x'))), ENAMETOOLONG);
}

TEST_F(FileUtilsTest, AcceptsALinkToADirectoryAsADirectory) {
    fs::create_directory_symlink(profile.data(), at("link"));
    EXPECT_EQ(FileUtils::createDirectory(textAt("link")), 0);
}

TEST_F(FileUtilsTest, RemovesALinkAndNotItsTarget) {
    writeFile(at("file"), "x");
    fs::create_symlink(at("file"), at("link"));
    EXPECT_EQ(FileUtils::removeFile(textAt("link")), 0);
    EXPECT_TRUE(fs::exists(at("file")));
}

TEST_F(FileUtilsTest, RemovesFilesOnly) {
    writeFile(at("file"), "x");
    EXPECT_EQ(FileUtils::removeFile(textAt("file")), 0);
    EXPECT_FALSE(fs::exists(at("file")));
    EXPECT_EQ(FileUtils::removeFile(textAt("file")), ENOENT);
    EXPECT_EQ(FileUtils::removeFile(""), ENOENT);
    fs::create_directory(at("empty"));
    EXPECT_NE(FileUtils::removeFile(textAt("empty")), 0);
    EXPECT_TRUE(fs::is_directory(at("empty")));
}

TEST_F(FileUtilsTest, MoveReplacesAnExistingTarget) {
    writeFile(at("source"), "new");
    writeFile(at("target"), "old");
    EXPECT_EQ(FileUtils::moveFile(textAt("source"), textAt("target"), false), 0);
    EXPECT_EQ(readFile(at("target")), "new");
    EXPECT_FALSE(fs::exists(at("source")));
}

TEST_F(FileUtilsTest, MoveWithoutReplaceFailsIfTheTargetExists) {
    writeFile(at("source"), "new");
    writeFile(at("target"), "old");
    EXPECT_EQ(FileUtils::moveFile(textAt("source"), textAt("target"), true), EEXIST);
    EXPECT_EQ(readFile(at("target")), "old");
    EXPECT_EQ(readFile(at("source")), "new");
    EXPECT_EQ(FileUtils::moveFile(textAt("source"), textAt("free"), true), 0);
    EXPECT_EQ(readFile(at("free")), "new");
    EXPECT_FALSE(fs::exists(at("source")));
}

TEST_F(FileUtilsTest, ReturnsTheReasonIfAFileCannotBeMoved) {
    writeFile(at("source"), "new");
    fs::create_directory(at("directory"));
    EXPECT_EQ(FileUtils::moveFile(textAt("absent"), textAt("target"), false), ENOENT);
    EXPECT_EQ(FileUtils::moveFile(textAt("source"), textAt("nowhere/target"), false), ENOENT);
    EXPECT_EQ(FileUtils::moveFile(textAt("source"), textAt("directory"), false), EISDIR);
    EXPECT_EQ(FileUtils::moveFile(textAt("directory"), textAt("other"), false), EISDIR);
    EXPECT_EQ(FileUtils::moveFile("", textAt("target"), false), ENOENT);
    EXPECT_EQ(FileUtils::moveFile(textAt("source"), "", false), ENOENT);
    EXPECT_EQ(readFile(at("source")), "new");
}

TEST_F(FileUtilsTest, MovesBetweenFileSystems) {
    const fs::path elsewhere = testing_host::findPathOnOtherFileSystem(profile.root(), "lumora-moved");
    if (elsewhere.empty()) {
        GTEST_SKIP() << "one file system";
    }
    const std::string content(100000, 'x');
    writeFile(at("source"), content);
    fs::permissions(at("source"), fs::perms(0600));
    ASSERT_EQ(FileUtils::moveFile(textAt("source"), elsewhere.string(), false), 0);
    EXPECT_EQ(readFile(elsewhere), content);
    EXPECT_EQ(modeOf(elsewhere), fs::perms(0600));
    EXPECT_FALSE(fs::exists(at("source")));

    writeFile(at("target"), "old");
    EXPECT_EQ(FileUtils::moveFile(elsewhere.string(), textAt("target"), true), EEXIST);
    EXPECT_EQ(readFile(at("target")), "old");
    EXPECT_EQ(FileUtils::moveFile(elsewhere.string(), textAt("target"), false), 0);
    EXPECT_EQ(readFile(at("target")), content);
    EXPECT_FALSE(fs::exists(elsewhere));
    for (const auto& entry : fs::directory_iterator(profile.root())) {
        EXPECT_FALSE(entry.path().filename().string().ends_with(".tmp")) << entry.path();
    }
}

TEST_F(FileUtilsTest, ReturnsFileNameAndParentDirectoryOfAPath) {
    EXPECT_EQ(FileUtils::FileSeparator(), "/");
    EXPECT_EQ(FileUtils::getFileName("/a/b.xml"), "b.xml");
    EXPECT_EQ(FileUtils::getFileName("b.xml"), "b.xml");
    EXPECT_EQ(FileUtils::getFileName("/a/"), "");
    EXPECT_EQ(FileUtils::getFileName(""), "");
    EXPECT_EQ(FileUtils::getParentDirectory("/a/b.xml"), "/a");
    EXPECT_EQ(FileUtils::getParentDirectory("a/b/c"), "a/b");
    EXPECT_EQ(FileUtils::getParentDirectory("f"), "");
    EXPECT_EQ(FileUtils::getParentDirectory(""), "");
    EXPECT_EQ(FileUtils::getParentDirectory("/f"), "/");
}

TEST_F(FileUtilsTest, ListsFilesOfTheWholeTreeInOrder) {
    for (const auto* name : {"b.xml", "a.dat", "Cache/old/cachedTftp.dat", "Cache/c.xml", ".hidden", "none"}) {
        writeFile(at("tree") / name, "x");
    }
    fs::create_directory(at("tree/folder.dat"));
    EXPECT_THAT(list(""), ElementsAre(".hidden", "Cache/c.xml", "Cache/old/cachedTftp.dat", "a.dat", "b.xml", "none"));
    EXPECT_THAT(list("dat"), ElementsAre("Cache/old/cachedTftp.dat", "a.dat"));
}

TEST_F(FileUtilsTest, MatchesAnExtensionWithOrWithoutItsPointIgnoringCase) {
    for (const auto* name : {"a.DAT", "b.dat", "c.data", "d.xml.dat", "dat", "e.dat.bak", ".f.dat"}) {
        writeFile(at("tree") / name, "x");
    }
    for (const auto* extension : {"dat", ".dat", "DAT", ".Dat"}) {
        EXPECT_THAT(list(extension), ElementsAre(".f.dat", "a.DAT", "b.dat", "d.xml.dat")) << extension;
    }
    EXPECT_THAT(list("..dat"), IsEmpty());
}

TEST_F(FileUtilsTest, ListsLinkedDirectoriesWithoutEnteringThem) {
    writeFile(at("outside/secret.dat"), "x");
    writeFile(at("tree/a.dat"), "x");
    fs::create_directory_symlink(at("outside"), at("tree/link"));
    fs::create_directory_symlink(at("tree"), at("tree/loop"));
    fs::create_symlink(at("nowhere"), at("tree/dangling"));
    EXPECT_THAT(list(""), ElementsAre("a.dat", "dangling", "link", "loop"));
}

TEST_F(FileUtilsTest, ListsNothingIfTheDirectoryIsMissingOrAFile) {
    EXPECT_THAT(list(""), IsEmpty());
    writeFile(at("tree"), "a file");
    EXPECT_THAT(list(""), IsEmpty());
    std::vector<std::string> files{"left over"};
    FileUtils::getFilesFromDirectory("", "", files);
    EXPECT_THAT(files, IsEmpty());
}

} // namespace
