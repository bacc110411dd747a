#include "LocalFileTestSupport.h"
#include "MadeDirectories.h"
#include "featuresets/adapters/config/xml/XmlTestSupport.h"

#include <LogRecorder.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using ZelUnified::LocalFileConfigStore;

namespace {

namespace fs = std::filesystem;

/// Returns the directories that a write creates for a store with this directory. The write stops before the file
/// facility, which creates directories of its own.
std::vector<std::string> madeFor(const std::string& directory) {
    LocalFileConfigStore store("Name", 7, directory, "file.dat", true, false, true);
    store.storeValue(L"key", L"v");
    const xml_test::XmlMemoryLimit memory(0);
    const xml_test::MadeDirectories made;
    store.persistValues();
    return made.getPaths();
}

class LocalFileConfigStoreDirectoryTest : public testing::Test {
protected:
    testing_host::TemporaryProfile profile;
    const std::string folder = (profile.root() / "made").string();
};

} // namespace

TEST_F(LocalFileConfigStoreDirectoryTest, IsCreatedWithoutItsTrailingSeparator) {
    EXPECT_THAT(madeFor(folder), ElementsAre(folder));
    EXPECT_TRUE(fs::is_directory(folder));
}

TEST_F(LocalFileConfigStoreDirectoryTest, OnlyOneTrailingSeparatorIsRemoved) {
    EXPECT_THAT(madeFor(folder + "/"), ElementsAre(folder + "/"));
    EXPECT_TRUE(fs::is_directory(folder));
}

TEST_F(LocalFileConfigStoreDirectoryTest, IsNotCreatedIfItIsTheCurrentDirectory) {
    const fs::path before = fs::current_path();
    fs::current_path(profile.root());
    const std::vector<std::string> made = madeFor("");
    fs::current_path(before);
    EXPECT_THAT(made, IsEmpty());
}

TEST_F(LocalFileConfigStoreDirectoryTest, AFailureToCreateItIsNotLogged) {
    testing_host::writeFile(folder, "a file is in the way");
    const testing_host::LogRecorder log;
    EXPECT_THAT(madeFor(folder + "/below"), ElementsAre(folder + "/below"));
    EXPECT_FALSE(fs::is_directory(folder));
    // The line was logged by the read before the write.
    EXPECT_THAT(log.getTexts("ConfigService-LocalFileConfigStore"),
                ElementsAre("Failed to read config file " + folder + "/below/file.dat"));
}
