#include "RegistryReading.h"
#include "TemporaryProfile.h"

#include <registry/RegistryFiles.h>
#include <registry/RegistryTextFile.h>

#include <PrivateFiles.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>

namespace {

using namespace registry_reading;
using testing_host::readFile;

class RegistryFilesTest : public testing::Test {
protected:
    RegistryText parse(const std::string& lines) {
        return parseRegistryText("Windows Registry Editor Version 5.00\r\n" + lines, HKEY_CURRENT_USER);
    }

    testing_host::TemporaryProfile profile;
    const std::filesystem::path folder = profile.data() / "registry";
};

TEST_F(RegistryFilesTest, TheUsersFilesAreListedInOrderOfTheirNamesForTheUsersRootOnly) {
    for (const auto* name : {"b.reg", "A.REG", ".hidden.reg", "notes.txt"}) {
        testing_host::writeFile(folder / name, "x");
    }
    auto files = findRegistryFiles(HKEY_CURRENT_USER);
    std::erase_if(files, [this](const auto& path) { return !path.starts_with(folder.string()); });
    EXPECT_THAT(files, testing::ElementsAre((folder / "A.REG").string(), (folder / "b.reg").string()));
    EXPECT_THAT(findRegistryFiles(HKEY_LOCAL_MACHINE),
                testing::Not(testing::Contains(testing::StartsWith(folder.string()))));
}

TEST_F(RegistryFilesTest, AnInstalledFileTakesEffectWhenAKeyIsNextOpened) {
    const auto registry = makeFileRegistry({(profile.root() / "none").string(), {}});
    EXPECT_FALSE(hasKey(*registry, L"K"));
    EXPECT_EQ(installRegistryText(parse("[HKCU\\K]\r\n\"a\"=\"1\"\r\n"), "policy"), 0);
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"1");
}

TEST_F(RegistryFilesTest, OnlyAcceptedLinesAreWritten) {
    const auto text = parse("[HKCU\\K]\r\n\"a\"=\"1\"\r\nrubbish\r\n\"b\"=\"2\"\r\n[HKLM\\K]\r\n\"c\"=\"3\"\r\n");
    ASSERT_EQ(text.refusals.size(), 3U);
    ASSERT_EQ(installRegistryText(text, "policy.reg"), 0);
    EXPECT_EQ(readFile(folder / "policy.reg"), "Windows Registry Editor Version 5.00\r\n\r\n"
                                               "[HKEY_CURRENT_USER\\K]\r\n\"a\"=\"1\"\r\n\"b\"=\"2\"\r\n");
}

TEST_F(RegistryFilesTest, FileAndFolderAreAccessibleToTheirOwnerOnly) {
    ASSERT_EQ(installRegistryText(parse("[HKCU\\K]\r\n"), "policy.REG"), 0);
    EXPECT_TRUE(testing_host::isPrivate(folder));
    EXPECT_TRUE(testing_host::isPrivate(folder / "policy.REG"));
}

TEST_F(RegistryFilesTest, InstallingAFileReplacesTheFileOfTheSameName) {
    ASSERT_EQ(installRegistryText(parse("[HKCU\\Old]\r\n"), "policy"), 0);
    ASSERT_EQ(installRegistryText(parse("[HKCU\\New]\r\n"), "policy"), 0);
    const auto registry = makeFileRegistry({(profile.root() / "none").string(), {}});
    EXPECT_FALSE(hasKey(*registry, L"Old"));
    EXPECT_TRUE(hasKey(*registry, L"New"));
}

TEST_F(RegistryFilesTest, InstallingOverALinkReplacesItsTarget) {
    const auto target = profile.root() / "shared" / "policy.reg";
    testing_host::writeFile(target, "old");
    std::filesystem::create_directories(folder);
    std::filesystem::create_symlink(target, folder / "policy.reg");
    ASSERT_EQ(installRegistryText(parse("[HKCU\\K]\r\n"), "policy"), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "policy.reg"));
    EXPECT_THAT(readFile(target), testing::HasSubstr("[HKEY_CURRENT_USER\\K]"));
}

TEST_F(RegistryFilesTest, OnlyARegularFileIsReplaced) {
    std::filesystem::create_directories(folder);
    ASSERT_EQ(mkfifo((folder / "policy.reg").c_str(), 0600), 0);
    EXPECT_EQ(installRegistryText(parse("[HKCU\\K]\r\n"), "policy"), EEXIST);
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "policy.reg"));
}

TEST_F(RegistryFilesTest, ANameWithAPathIsRefused) {
    const auto text = parse("[HKCU\\K]\r\n");
    for (const std::string name : {"", ".", "..", ".hidden", "a/b", "../b", "a\\b", "c:x"}) {
        EXPECT_EQ(installRegistryText(text, name), EINVAL) << name;
    }
    EXPECT_EQ(installRegistryText(text, std::string("a\0b", 3)), EINVAL);
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(RegistryFilesTest, ATextThatCannotBeReadBackIsNotWritten) {
    auto text = parse("[HKCU\\K]\r\n");
    ASSERT_EQ(installRegistryText(text, "policy"), 0);
    text.sections.front().path.assign(64U << 20U, L'k');
    EXPECT_EQ(installRegistryText(text, "policy"), EFBIG);
    const auto registry = makeFileRegistry({(profile.root() / "none").string(), {}});
    EXPECT_TRUE(hasKey(*registry, L"K"));
}

TEST_F(RegistryFilesTest, AFileAtThePathOfTheFolderIsAnError) {
    testing_host::writeFile(folder, "in the way");
    EXPECT_NE(installRegistryText(parse("[HKCU\\K]\r\n"), "policy"), 0);
    EXPECT_EQ(readFile(folder), "in the way");
}

} // namespace
