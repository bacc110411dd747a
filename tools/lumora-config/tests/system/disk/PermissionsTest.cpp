#include "Program.h"

#include <PrivateFiles.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <set>

namespace program_test {

namespace fs = std::filesystem;

namespace {

/// Clears the umask, which the program inherits: only the program restricts the mode of its files.
class OpenUmask {
public:
    OpenUmask() : before(umask(0)) {}
    ~OpenUmask() { umask(before); }
    OpenUmask(const OpenUmask&) = delete;
    OpenUmask& operator=(const OpenUmask&) = delete;

private:
    mode_t before;
};

} // namespace

TEST(Permissions, AllFilesOfASessionAreAccessibleToTheirOwnerOnly) {
    const Profile profile;
    const std::string document = profile.writeDocument("resources/a.xml", "<FromServer>x</FromServer>");
    {
        const OpenUmask open;
        const auto outcome = profile.shell({"set Theme dark", "add-store " + document + ":Foreign:40:cache",
                                            "observe Theme", "set ConnectionPassword planted-secret", "report", "log",
                                            "provision lumora://provision?ServicesDomain=example.org", "wait"},
                                           {"-v"});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
        ASSERT_EQ(profile.run({"set", "Theme", "light"}).exitCode, 0);
    }
    std::set<std::string> seen;
    for (const auto& entry : fs::recursive_directory_iterator(profile.root())) {
        const std::string name = fs::relative(entry.path(), profile.root()).generic_string();
        if (name.starts_with("resources")) {
            continue; // belongs to the installation
        }
        seen.insert(name);
        EXPECT_TRUE(testing_host::isPrivate(entry.path())) << name;
    }
    for (const auto* name : {"config/lumoraLocalConfig.dat", "config/lumoraLocalConfig_backup.dat",
                             "config/Cache/cachedForeign.dat", "config/Cache/cachedUrlProvisioningConfigStore.dat",
                             "data/keys/cat0.key", "data/keys/cat2.key", "state/lumora-config.log"}) {
        EXPECT_TRUE(seen.contains(name)) << name;
    }
}

} // namespace program_test
