#include "RegistryReading.h"
#include "TemporaryProfile.h"

#include <registry/RegistryFiles.h>
#include <registry/RegistryHive.h>
#include <registry/RegistryTextFile.h>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>

namespace {

using namespace registry_reading;
using testing_host::readFile;

class RegistryInstallTest : public testing::Test {
protected:
    RegistryText parse(const std::string& lines) {
        return parseRegistryText("Windows Registry Editor Version 5.00\r\n" + lines, HKEY_CURRENT_USER);
    }

    testing_host::TemporaryProfile profile;
    const std::filesystem::path folder = profile.data() / "registry";
};

TEST_F(RegistryInstallTest, AnInstalledFileTakesEffectWhenAKeyIsNextOpened) {
    const auto registry = makeFileRegistry({(profile.root() / "none").string(), {}});
    EXPECT_FALSE(hasKey(*registry, L"K"));
    EXPECT_EQ(installRegistryText(parse("[HKCU\\K]\r\n\"a\"=\"1\"\r\n"), "policy"), 0);
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"1");
}

TEST_F(RegistryInstallTest, OnlyAcceptedLinesAreWritten) {
    const auto text = parse("[HKCU\\K]\r\n\"a\"=\"1\"\r\nrubbish\r\n\"b\"=\"2\"\r\n[HKLM\\K]\r\n\"c\"=\"3\"\r\n");
    ASSERT_EQ(text.refusals.size(), 3U);
    ASSERT_EQ(installRegistryText(text, "policy.reg"), 0);
    EXPECT_EQ(readFile(folder / "policy.reg"), "Windows Registry Editor Version 5.00\r\n\r\n"
                                               "[HKEY_CURRENT_USER\\K]\r\n\"a\"=\"1\"\r\n\"b\"=\"2\"\r\n");
}

TEST_F(RegistryInstallTest, FileAndFolderAreAccessibleToTheirOwnerOnly) {
    ASSERT_EQ(installRegistryText(parse("[HKCU\\K]\r\n"), "policy.REG"), 0);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(folder).permissions(), perms::owner_all);
    EXPECT_EQ(std::filesystem::status(folder / "policy.REG").permissions(), perms::owner_read | perms::owner_write);
}

TEST_F(RegistryInstallTest, ASecondFileOfTheNameReplacesTheFirst) {
    ASSERT_EQ(installRegistryText(parse("[HKCU\\Old]\r\n"), "policy"), 0);
    ASSERT_EQ(installRegistryText(parse("[HKCU\\New]\r\n"), "policy"), 0);
    const auto registry = makeFileRegistry({(profile.root() / "none").string(), {}});
    EXPECT_FALSE(hasKey(*registry, L"Old"));
    EXPECT_TRUE(hasKey(*registry, L"New"));
}

TEST_F(RegistryInstallTest, InstallingOverALinkReplacesItsTarget) {
    const auto target = profile.root() / "shared" / "policy.reg";
    testing_host::writeFile(target, "old");
    std::filesystem::create_directories(folder);
    std::filesystem::create_symlink(target, folder / "policy.reg");
    ASSERT_EQ(installRegistryText(parse("[HKCU\\K]\r\n"), "policy"), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "policy.reg"));
    EXPECT_THAT(readFile(target), testing::HasSubstr("[HKEY_CURRENT_USER\\K]"));
}

TEST_F(RegistryInstallTest, OnlyARegularFileIsReplaced) {
    std::filesystem::create_directories(folder);
    ASSERT_EQ(mkfifo((folder / "policy.reg").c_str(), 0600), 0);
    EXPECT_EQ(installRegistryText(parse("[HKCU\\K]\r\n"), "policy"), EEXIST);
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "policy.reg"));
}

TEST_F(RegistryInstallTest, ANameWithAPathIsRefused) {
    const auto text = parse("[HKCU\\K]\r\n");
    for (const std::string name : {"", ".", "..", ".hidden", "a/b", "../b", "a\\b", "c:x"}) {
        EXPECT_EQ(installRegistryText(text, name), EINVAL) << name;
    }
    EXPECT_EQ(installRegistryText(text, std::string("a\0b", 3)), EINVAL);
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(RegistryInstallTest, ATextThatCannotBeReadBackIsNotWritten) {
    auto text = parse("[HKCU\\K]\r\n");
    ASSERT_EQ(installRegistryText(text, "policy"), 0);
    text.sections.front().path.assign(64U << 20U, L'k');
    EXPECT_EQ(installRegistryText(text, "policy"), EFBIG);
    const auto registry = makeFileRegistry({(profile.root() / "none").string(), {}});
    EXPECT_TRUE(hasKey(*registry, L"K"));
}

TEST_F(RegistryInstallTest, AFileAtThePathOfTheFolderIsAnError) {
    testing_host::writeFile(folder, "in the way");
    EXPECT_NE(installRegistryText(parse("[HKCU\\K]\r\n"), "policy"), 0);
    EXPECT_EQ(readFile(folder), "in the way");
}

TEST(ProcessRegistry, IsThePlatformsRegistryUntilItIsOverridden) {
    const testing_host::TemporaryProfile profile;
    const auto platform = getRegistry();
    ASSERT_NE(platform, nullptr);
    EXPECT_EQ(getRegistry(), platform);
    const auto own = std::make_shared<RegistryHive>();
    overrideRegistry(own);
    EXPECT_EQ(getRegistry(), own);
    overrideRegistry(nullptr);
    EXPECT_EQ(getRegistry(), platform);
}

TEST(ProcessRegistry, ReadsTheUsersFilesOfTheCurrentProfile) {
    const testing_host::TemporaryProfile profile;
    testing_host::writeFile(profile.data() / "registry/a.reg", "REGEDIT4\n[HKCU\\Lumora test\\K]\n\"a\"=\"1\"\n");
    EXPECT_EQ(textOf(*getRegistry(), L"Lumora test\\K", L"a"), L"1");
}

} // namespace
