#include "disk/ResetFiles.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace lumora_config {

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

TEST(ForeignFiles, ExcludeFilesOfTheClient) {
    for (const auto* path :
         {"lumoraLocalConfig.dat", "lumoraLocalConfig_backup.dat", "RegistryConfigStore.txt", "home-fenn-info.dat",
          "service-location.dat", "SSOAuthInfoStore.dat", "Cache/cachedForeign.dat", "Cache/cachedForeign.xml",
          "Cache/cachedA/B.dat", "Cache/cachedUrlProvisioningConfigStore.dat", "deviceData4.properties",
          "lumora-config-user.xml", "installationId.txt", "deep/INSTALLATIONID.TXT"}) {
        EXPECT_TRUE(isClientFile(path)) << path;
    }
}

TEST(ForeignFiles, ExcludeFilesMovedAside) {
    for (const auto* path : {"lumoraLocalConfig.dat.unreadable", "lumoraLocalConfig_backup.dat.unreadable.2",
                             "Cache/cachedForeign.dat.unreadable.10", "installationId.txt.unreadable"}) {
        EXPECT_TRUE(isClientFile(path)) << path;
    }
    for (const auto* path :
         {"other.dat.unreadable", "lumoraLocalConfig.dat.unreadable.", "lumoraLocalConfig.dat.unreadable.x",
          "lumoraLocalConfig.dat.unreadable2", ".unreadable"}) {
        EXPECT_FALSE(isClientFile(path)) << path;
    }
}

TEST(ForeignFiles, ExcludeTemporaryFilesOfTheClient) {
    for (const auto* path :
         {".lumoraLocalConfig.dat.0123456789abcdef.tmp", "Cache/.cachedForeign.dat.0123456789ABCDEF.tmp",
          "Cache/cachedA/.B.dat.0123456789abcdef.tmp", ".lumoraLocalConfig.dat.unreadable.0123456789abcdef.tmp"}) {
        EXPECT_TRUE(isClientFile(path)) << path;
    }
    for (const auto* path : {".other.dat.0123456789abcdef.tmp", ".lumoraLocalConfig.dat.0123456789abcdeg.tmp",
                             ".lumoraLocalConfig.dat.0123456789abcde.tmp", ".lumoraLocalConfig.dat0123456789abcdef.tmp",
                             "lumoraLocalConfig.dat.0123456789abcdef.tmp", ".0123456789abcdef.tmp"}) {
        EXPECT_FALSE(isClientFile(path)) << path;
    }
}

TEST(ForeignFiles, IncludeAllOtherFiles) {
    for (const auto* path : {"thesis.odt", ".hidden", "Cache/other.dat", "Cache/deep/cachedA.dat", "cachedForeign.dat",
                             "deep/lumoraLocalConfig.dat", "LUMORALOCALCONFIG.DAT", "Cache/cachedForeign.txt",
                             "installationId.txt.bak", "Cache", "lumora-config-defaults.xml", ""}) {
        EXPECT_FALSE(isClientFile(path)) << path;
    }
}

TEST(ForeignFiles, AreFoundInEveryFolder) {
    const testing_host::TemporaryProfile profile;
    for (const auto* name : {"z.txt", "lumoraLocalConfig.dat", "Cache/deep/a.xml", "Cache/cachedA.dat"}) {
        testing_host::writeFile(profile.config() / name, "x");
    }
    EXPECT_THAT(findForeignFiles(profile.config().string()), ElementsAre("Cache/deep/a.xml", "z.txt"));
    EXPECT_THAT(findForeignFiles((profile.root() / "absent").string()), IsEmpty());
}

TEST(ForeignFiles, ALinkToAFolderIsOneAndIsNotFollowed) {
    const testing_host::TemporaryProfile profile;
    fs::create_directory_symlink(profile.root(), profile.config() / "link");
    EXPECT_THAT(findForeignFiles(profile.config().string()), ElementsAre("link"));
}

} // namespace lumora_config
