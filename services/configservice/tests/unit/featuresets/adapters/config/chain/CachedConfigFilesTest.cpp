#include "featuresets/adapters/config/chain/CachedConfigFiles.h"

#include "ConfigStoreManagerFixture.h"

#include <TemporaryProfile.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

class CachedConfigFilesTest : public ConfigStoreManagerFixture {
protected:
    std::filesystem::path cached(const std::string& name) const { return profile.config() / "Cache" / name; }

    testing_host::TemporaryProfile profile;
};

TEST_F(CachedConfigFilesTest, TheCopyOfAStoreIsADatFileInTheCacheFolder) {
    EXPECT_EQ(CachedConfigFiles::getDirectory(), (profile.config() / "Cache").string());
    EXPECT_EQ(CachedConfigFiles::getFileName("Tftp"), "cachedTftp.dat");
    EXPECT_EQ(CachedConfigFiles::getPathOfCopy("Tftp"), cached("cachedTftp.dat").string());
}

TEST_F(CachedConfigFilesTest, AStoreWithAParentComponentInItsNameHasNoCopy) {
    for (const auto* name : {"..", "../A", "A/..", "A/../B", "..\\A", "A\\..\\B"}) {
        EXPECT_FALSE(CachedConfigFiles::mayHaveCopy(name)) << name;
    }
    for (const auto* name : {"", "A", "..A", "A..", "...", "A/B"}) {
        EXPECT_TRUE(CachedConfigFiles::mayHaveCopy(name)) << name;
    }
}

TEST_F(CachedConfigFilesTest, ListsTheNameOfEachCopyWithTheXmlExtension) {
    for (const auto* name : {"cachedA.dat", "cachedB.xml", "notes.txt", "cachedC.DAT"}) {
        testing_host::writeFile(cached(name), "x");
    }
    EXPECT_THAT(CachedConfigFiles::getXmlNames(), testing::UnorderedElementsAre("cachedA.xml", "cachedB.xml"));
}

TEST_F(CachedConfigFilesTest, RemovingACachedXmlFileAlsoRemovesTheDatFile) {
    testing_host::writeFile(cached("cachedR.xml"), "x");
    testing_host::writeFile(cached("cachedR.dat"), "x");
    EXPECT_TRUE(CachedConfigFiles::removeCachedFiles("cachedR.xml"));
    EXPECT_FALSE(std::filesystem::exists(cached("cachedR.xml")));
    EXPECT_FALSE(std::filesystem::exists(cached("cachedR.dat")));
    EXPECT_THAT(logged(), ElementsAre("Removed file: " + cached("cachedR.xml").string(),
                                      "Removed file: " + cached("cachedR.dat").string()));
    EXPECT_EQ(loggedAt(ZelLogLevel::Info), logged());
    EXPECT_EQ(log.getRecords().front().function, "ZelUnified::ConfigStoreManager::removeFile");
}

TEST_F(CachedConfigFilesTest, RemovingACachedXmlFileSucceedsIfOnlyTheDatFileExists) {
    testing_host::writeFile(cached("cachedR.dat"), "x");
    EXPECT_TRUE(CachedConfigFiles::removeCachedFiles("cachedR.xml"));
    EXPECT_FALSE(std::filesystem::exists(cached("cachedR.dat")));
}

TEST_F(CachedConfigFilesTest, RemovingACachedDatFileKeepsTheXmlFile) {
    testing_host::writeFile(cached("cachedR.xml"), "x");
    testing_host::writeFile(cached("cachedR.dat"), "x");
    EXPECT_TRUE(CachedConfigFiles::removeCachedFiles("cachedR.dat"));
    EXPECT_TRUE(std::filesystem::exists(cached("cachedR.xml")));
}

TEST_F(CachedConfigFilesTest, TheExtensionOfACachedFileIsComparedExactly) {
    testing_host::writeFile(cached("cachedR.dat"), "x");
    EXPECT_FALSE(CachedConfigFiles::removeCachedFiles("cachedR.XML"));
    EXPECT_TRUE(std::filesystem::exists(cached("cachedR.dat")));
}

TEST_F(CachedConfigFilesTest, RemovingAMissingCachedFileReturnsFalseWithoutALine) {
    EXPECT_FALSE(CachedConfigFiles::removeCachedFiles("cachedR.xml"));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(CachedConfigFilesTest, AFileThatCannotBeRemovedIsLoggedAndReportedAsRemoved) {
    std::filesystem::create_directories(cached("cachedR.dat"));
    EXPECT_TRUE(CachedConfigFiles::removeCachedFiles("cachedR.dat"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("Failed to remove file: " + cached("cachedR.dat").string()));
}

TEST_F(CachedConfigFilesTest, ANameThatLeadsOutOfTheCacheFolderRemovesNoFile) {
    testing_host::writeFile(profile.config() / "victim.dat", "x");
    testing_host::writeFile(cached("cached...dat"), "x");
    testing_host::writeFile(cached("other...dat"), "x");
    for (const auto* name : {"../victim.dat", "../victim.xml", "cached../x.dat", "cached../x.xml", "cached...dat"}) {
        log.clear();
        EXPECT_FALSE(CachedConfigFiles::removeCachedFiles(name)) << name;
        EXPECT_THAT(logged(),
                    ElementsAre("Name contains \"..\", cached file not removed: [" + std::string(name) + "]"));
        EXPECT_EQ(loggedAt(ZelLogLevel::Warning), logged());
    }
    EXPECT_TRUE(std::filesystem::exists(profile.config() / "victim.dat"));
    EXPECT_TRUE(std::filesystem::exists(cached("cached...dat")));
    EXPECT_TRUE(CachedConfigFiles::removeCachedFiles("other...dat"));
}

TEST_F(CachedConfigFilesTest, AFileInAFolderThatEndsWithTwoDotsIsNotRemoved) {
    testing_host::writeFile(cached("cached..") / "x.dat", "x");
    EXPECT_FALSE(CachedConfigFiles::removeCachedFiles("cached../x.dat"));
    EXPECT_TRUE(std::filesystem::exists(cached("cached..") / "x.dat"));
}

} // namespace ZelUnified
