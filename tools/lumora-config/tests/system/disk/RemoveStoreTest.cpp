#include "Program.h"

#include <gmock/gmock.h>

namespace program_test {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// A profile with cached copies whose names occur in each other.
class RemoveStore : public testing::Test {
protected:
    RemoveStore() {
        const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
        const auto outcome = profile.run({"--store", file + ":TFTPConfigStore:40:cache", "--store",
                                          file + ":MyTFTP:50:cache", "--store", file + ":Tftp:60:cache", "stores"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
        EXPECT_EQ(record(), wholeRecord);
    }

    std::string record() const {
        const auto outcome = profile.run({"get", "PrimaryConfigStores"});
        return outcome.exitCode == 0 ? outcome.out : "none";
    }
    std::filesystem::path copyOf(const std::string& name) const {
        return profile.root() / "config/Cache" / ("cached" + name + ".dat");
    }
    std::vector<std::string> stores() const { return storeNames(profile.run({"--json", "stores"}).lines().front()); }

    const Profile profile;
    const std::string wholeRecord = "MyTFTP:51;Tftp:61;TFTPConfigStore:41;\n";
};

TEST_F(RemoveStore, ANameThatIsPartOfOthersChangesNothing) {
    for (const auto* name : {"TFT", "FTP", "MyTFTP:51", "config", ""}) {
        const auto outcome = profile.run({"remove-store", name});
        EXPECT_EQ(outcome.exitCode, 1) << name;
        EXPECT_THAT(outcome.error, HasSubstr("there is no store '" + std::string(name) + "'"));
        EXPECT_EQ(record(), wholeRecord) << name;
    }
    for (const auto* name : {"TFTPConfigStore", "MyTFTP", "Tftp"}) {
        EXPECT_TRUE(std::filesystem::exists(copyOf(name))) << name;
        EXPECT_THAT(stores(), Contains(name));
    }
}

TEST_F(RemoveStore, DoesNotChangeTheRecordsOfOtherStores) {
    EXPECT_EQ(profile.run({"remove-store", "TFTP"}).exitCode, 0);
    EXPECT_EQ(record(), "MyTFTP:51;TFTPConfigStore:41;\n");
    EXPECT_THAT(stores(), AllOf(Contains("MyTFTP"), Contains("TFTPConfigStore"), Not(Contains("Tftp"))));
}

TEST_F(RemoveStore, AStoreWithoutRecordDoesNotChangeTheOthers) {
    const auto file = profile.writeDocument("b.xml", "<Other>x</Other>");
    const auto outcome = profile.run({"--store", file + ":Config:70", "remove-store", "Config"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(record(), wholeRecord);
}

TEST_F(RemoveStore, DeletesTheCopyOfAStoreThatWasReadFromIt) {
    ASSERT_TRUE(std::filesystem::exists(copyOf("MyTFTP")));
    const auto outcome = profile.run({"remove-store", "MyTFTP"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.error, "MyTFTP removed; its copy on the disk is deleted\n");
    EXPECT_FALSE(std::filesystem::exists(copyOf("MyTFTP")));
    EXPECT_THAT(stores(), Not(Contains("MyTFTP")));
}

TEST_F(RemoveStore, DeletesTheCopyUnderTheStoresOwnNameIfTheCaseDiffers) {
    const auto outcome = profile.run({"remove-store", "MYtftp"});
    EXPECT_EQ(outcome.error, "MyTFTP removed; its copy on the disk is deleted\n");
    EXPECT_FALSE(std::filesystem::exists(copyOf("MyTFTP")));
}

TEST_F(RemoveStore, DeletesTheCopyOfALiveStore) {
    const auto file = profile.writeDocument("b.xml", "<Other>x</Other>");
    const auto outcome = profile.run({"--store", file + ":MyTFTP:50:cache", "remove-store", "MyTFTP"});
    EXPECT_EQ(outcome.error, "MyTFTP removed; its copy on the disk is deleted\n");
    EXPECT_FALSE(std::filesystem::exists(copyOf("MyTFTP")));
    EXPECT_EQ(record(), "Tftp:61;TFTPConfigStore:41;\n");
}

TEST_F(RemoveStore, ReportsThatAnUncachedStoreHasNoCopy) {
    const auto file = profile.writeDocument("b.xml", "<Other>x</Other>");
    const auto outcome = profile.run({"--store", file + ":Plain:70", "remove-store", "Plain"});
    EXPECT_EQ(outcome.error, "Plain removed; it has no copy on the disk\n");
}

TEST_F(RemoveStore, ReportsThatTheNextStartCreatesAStoreOfTheProductAgain) {
    const auto outcome = profile.run({"remove-store", "RegistryConfigStore"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.error, HasSubstr("removed for this run; the next start creates it again"));
    EXPECT_THAT(stores(), Contains("RegistryConfigStore"));
    EXPECT_EQ(record(), wholeRecord);
}

TEST_F(RemoveStore, DoesNotChangeTheFileOfTheUsersStore) {
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto outcome = profile.run({"remove-store", "LocalFileConfigStore"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
    EXPECT_EQ(record(), wholeRecord);
}

TEST_F(RemoveStore, DoesNotChangeTheUsersRecordIfAStoreOfHigherPriorityHasOne) {
    const auto file = profile.writeDocument("front.xml", "<PrimaryConfigStores>Alien:1;</PrimaryConfigStores>");
    const auto outcome = profile.run({"--store", file + ":Front:10", "remove-store", "Tftp"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(record(), "MyTFTP:51;TFTPConfigStore:41;\n");
}

TEST_F(RemoveStore, IsRefusedWhileTheFeatureSetIsStopped) {
    const auto outcome = profile.shell({"stop", "remove-store MyTFTP"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, HasSubstr("only while the feature set is started"));
    EXPECT_EQ(record(), wholeRecord);
}

TEST_F(RemoveStore, ANameThatLeadsOutOfTheFolderDeletesNoOtherFile) {
    const auto file = profile.writeDocument("b.xml", "<Other>x</Other>");
    std::filesystem::create_directories(profile.root() / "config/Cache/cachedF");
    const auto victim = profile.write("victim.dat", "precious");
    const auto outcome = profile.run({"--store", file + ":F/../../../victim:70", "remove-store", "F/../../../victim"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_TRUE(std::filesystem::exists(victim));
}

} // namespace program_test
