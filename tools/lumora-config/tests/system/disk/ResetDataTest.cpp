#include "Program.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace program_test {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::Not;

namespace {

/// Returns every file below the folder with its content. A link to a folder has no content.
std::map<std::string, std::string> contentOf(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        // fs::relative() would return the target of a link.
        const auto name = entry.path().lexically_relative(folder).generic_string();
        if (entry.is_regular_file()) {
            files[name] = testing_host::readFile(entry.path());
        } else if (entry.is_symlink()) {
            files[name] = "";
        }
    }
    return files;
}

} // namespace

/// A profile in which every source has a value, with files of other programs beside them.
class ResetOfAFullProfile : public testing::Test {
protected:
    ResetOfAFullProfile() {
        profile.writePolicy("TelemetryEnabled", "false");
        const auto document = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
        run({"--store", document + ":Foreign:40:cache", "set", "Theme", "dark"});
        run({"set", "connectionpassword", "planted-secret"});
        run({"provision", "lumora://p?ServicesDomain=example.net"});
        for (const auto* name :
             {"deviceData4.properties", "lumora-config-user.xml", "INSTALLATIONID.txt", "Cache/deep/installationId.TXT",
              "other.log", ".hidden", "Cache/deep/other.xml", "installationId.txt.bak", "SSOAuthInfoStore.dat"}) {
            profile.write("config/" + std::string(name), "bytes\r\n of " + std::string(name));
        }
        profile.write("outside/precious.txt", "precious");
        std::error_code error; // some platforms have no links
        fs::create_directory_symlink(profile.root() / "outside", config() / "folder-link", error);
        fs::create_symlink(profile.root() / "outside/precious.txt", config() / "file-link", error);
        hasLinks = !error;
    }

    Outcome run(const Arguments& arguments) const {
        auto outcome = profile.run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
        return outcome;
    }
    fs::path config() const { return profile.root() / "config"; }

    const Profile profile;
    bool hasLinks = false;
};

TEST_F(ResetOfAFullProfile, KeepsOnlyTheSparedFilesUnchanged) {
    auto before = contentOf(config());
    ASSERT_THAT(before, testing::Contains(Key("lumoraLocalConfig.dat")));
    ASSERT_THAT(before, testing::Contains(Key("Cache/cachedForeign.dat")));
    run({"reset-data", "--yes", "--force"});
    const auto after = contentOf(config());
    EXPECT_THAT(after,
                ElementsAre(Key("Cache/cachedUrlProvisioningConfigStore.dat"), Key("Cache/deep/installationId.TXT"),
                            Key("INSTALLATIONID.txt"), Key("deviceData4.properties"), Key("lumora-config-user.xml")));
    for (const auto& [name, content] : after) {
        EXPECT_EQ(content, before[name]) << name;
    }
}

TEST_F(ResetOfAFullProfile, TheNextRunUsesTheKeptFiles) {
    run({"reset-data", "--yes", "--force"});
    EXPECT_THAT(run({"get", "ServicesDomain", "--origin"}).out,
                testing::StartsWith("example.net  (UrlProvisioningConfigStore, "));
    EXPECT_THAT(run({"get", "Theme", "--origin"}).out, testing::StartsWith("system  (lumora-config-defaults.xml, "));
    EXPECT_THAT(run({"get", "TelemetryEnabled", "--origin"}).out,
                testing::StartsWith("true  (lumora-config-defaults.xml, "));
    EXPECT_EQ(profile.run({"get", "FromServer"}).exitCode, 1);
    run({"set", "Theme", "light"});
    EXPECT_EQ(run({"get", "Theme"}).out, "light\n");
}

TEST_F(ResetOfAFullProfile, KeepsTheFolders) {
    run({"reset-data", "--yes", "--force"});
    EXPECT_TRUE(fs::is_directory(config() / "Cache" / "deep"));
}

TEST_F(ResetOfAFullProfile, LinksOutOfTheFolderAreNotFollowed) {
    ASSERT_TRUE(hasLinks);
    const auto outcome = run({"reset-data", "--yes", "--force"});
    EXPECT_FALSE(fs::exists(fs::symlink_status(config() / "file-link")));
    EXPECT_THAT(contentOf(profile.root() / "outside"), ElementsAre(testing::Pair("precious.txt", "precious")));
}

TEST_F(ResetOfAFullProfile, KeysOfTheEncryptedFilesAreKept) {
    const auto before = contentOf(profile.root() / "data" / "keys");
    ASSERT_THAT(before, Not(IsEmpty()));
    run({"reset-data", "--yes", "--force"});
    EXPECT_EQ(contentOf(profile.root() / "data" / "keys"), before);
}

TEST_F(ResetOfAFullProfile, ListsForeignFilesAndChangesNothing) {
    run({"stores"}); // moves a protected file with any other content aside
    const auto before = contentOf(config());
    const auto outcome = profile.run({"reset-data", "--yes"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error,
                HasSubstr(std::string("contains files that are not the client's; --force deletes them "
                                      "too: .hidden, Cache/deep/other.xml, ") +
                          (hasLinks ? "file-link, folder-link, " : "") + "installationId.txt.bak, other.log\n"));
    EXPECT_EQ(contentOf(config()), before);
    EXPECT_EQ(run({"get", "Theme"}).out, "dark\n");
}

TEST_F(ResetOfAFullProfile, PrintsNoSecret) {
    const auto outcome = run({"-v", "reset-data", "--yes", "--force"});
    EXPECT_THAT(outcome.error, HasSubstr("ConfigAdapter reset."));
    EXPECT_THAT(outcome.out + outcome.error, Not(HasSubstr("planted-secret")));
}

TEST(ResetData, FilesMovedAsideAndTemporaryFilesBelongToTheClient) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    for (const auto* name : {"lumoraLocalConfig.dat.unreadable", "lumoraLocalConfig.dat.unreadable.2",
                             ".lumoraLocalConfig.dat.0123456789abcdef.tmp"}) {
        profile.write("config/" + std::string(name), "damaged");
    }
    const auto outcome = profile.run({"reset-data", "--yes"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(contentOf(profile.root() / "config"), IsEmpty());
}

TEST(ResetData, ForceDoesNotConfirm) {
    const Profile profile;
    EXPECT_EQ(profile.run({"reset-data", "--force"}).exitCode, 2);
}

} // namespace program_test
