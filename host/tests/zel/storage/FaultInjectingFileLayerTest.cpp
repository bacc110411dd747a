#include "FaultInjectingFileLayer.h"

#include "StorageProfile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

namespace {

using testing_host::FaultInjectingFileLayer;
using testing_host::namesIn;
using testing_host::readFile;
using testing_host::writeFile;
using Operation = FaultInjectingFileLayer::Operation;

/// The tests that use the layer depend on its reverting unsynced changes.
struct FaultInjectingFileLayerTest : testing::Test {
    testing_host::TemporaryProfile profile;
    FaultInjectingFileLayer layer;
    const std::string folder = profile.config().string();
    const std::string first = folder + "/first";
    const std::string second = folder + "/second";

    void put(const std::string& path, std::string_view bytes, bool sync) {
        FaultInjectingFileLayer::Handle handle = -1;
        std::size_t count = 0;
        ASSERT_EQ(layer.createFile(path, handle), 0);
        ASSERT_EQ(layer.write(handle, bytes, count), 0);
        if (sync) {
            ASSERT_EQ(layer.sync(handle), 0);
        }
        ASSERT_EQ(layer.close(handle), 0);
    }
};

TEST_F(FaultInjectingFileLayerTest, APowerCutRemovesANameWhoseFolderWasNotSynced) {
    put(first, "abc", true);
    layer.cutPower(0);
    EXPECT_THAT(namesIn(folder), testing::IsEmpty());
}

TEST_F(FaultInjectingFileLayerTest, APowerCutRemovesBytesThatWereNotSynced) {
    put(first, "abc", false);
    ASSERT_EQ(layer.syncDirectory(folder), 0);
    layer.cutPower(0);
    EXPECT_THAT(namesIn(folder), testing::ElementsAre("first"));
    EXPECT_EQ(readFile(first), "");
}

TEST_F(FaultInjectingFileLayerTest, APowerCutKeepsSyncedFiles) {
    put(first, "abc", true);
    ASSERT_EQ(layer.syncDirectory(folder), 0);
    layer.cutPower(0);
    EXPECT_EQ(readFile(first), "abc");
}

TEST_F(FaultInjectingFileLayerTest, APowerCutRevertsAnUnsyncedRename) {
    writeFile(second, "old");
    put(first, "new", true);
    ASSERT_EQ(layer.rename(first, second), 0);
    EXPECT_EQ(layer.countUnsyncedNames(), 2U);
    layer.cutPower(1);
    EXPECT_EQ(readFile(first), "new");
    EXPECT_EQ(readFile(second), "old");
}

TEST_F(FaultInjectingFileLayerTest, ARenameOfUnsyncedBytesLosesThem) {
    writeFile(second, "old");
    put(first, "new", false);
    ASSERT_EQ(layer.rename(first, second), 0);
    layer.cutPower(2);
    EXPECT_THAT(namesIn(folder), testing::ElementsAre("second"));
    EXPECT_EQ(readFile(second), "");
}

TEST_F(FaultInjectingFileLayerTest, APowerCutRevertsUnsyncedLinksRemovalsAndFolders) {
    writeFile(first, "kept");
    ASSERT_EQ(layer.link(first, second), 0);
    ASSERT_EQ(layer.unlink(first), 0);
    ASSERT_EQ(layer.createDirectory(folder + "/inner"), 0);
    layer.cutPower(0);
    EXPECT_THAT(namesIn(folder), testing::ElementsAre("first"));
    EXPECT_EQ(readFile(first), "kept");
}

TEST_F(FaultInjectingFileLayerTest, APowerCutRestoresRemovedSymbolicLinks) {
    writeFile(folder + "/file", "of another");
    for (const char* target : {"file", "nowhere", "second"}) {
        SCOPED_TRACE(target);
        std::filesystem::create_symlink(target, second);
        put(first, "new", true);
        ASSERT_EQ(layer.syncDirectory(folder), 0);
        ASSERT_EQ(layer.rename(first, second), 0);
        layer.cutPower(0);
        EXPECT_EQ(std::filesystem::read_symlink(second), target);
        EXPECT_EQ(readFile(first), "new");
        ASSERT_EQ(layer.unlink(second), 0);
        layer.cutPower(0);
        EXPECT_EQ(std::filesystem::read_symlink(second), target);
        ASSERT_EQ(layer.unlink(second), 0);
        ASSERT_EQ(layer.unlink(first), 0);
        ASSERT_EQ(layer.syncDirectory(folder), 0);
    }
    EXPECT_EQ(readFile(folder + "/file"), "of another");
}

TEST_F(FaultInjectingFileLayerTest, FailsAtTheChosenCallOnce) {
    layer.failAt(2, EIO);
    layer.failAt(Operation::Unlink, 2, EPERM);
    EXPECT_EQ(layer.unlink(first), ENOENT);
    EXPECT_EQ(layer.link(first, second), EIO);
    EXPECT_EQ(layer.unlink(first), EPERM);
    EXPECT_EQ(layer.unlink(first), ENOENT);
}

TEST_F(FaultInjectingFileLayerTest, FailsEveryCallFromTheChosenOneOn) {
    layer.dieAt(2);
    ASSERT_EQ(layer.createDirectory(folder + "/a"), 0);
    EXPECT_EQ(layer.createDirectory(folder + "/b"), EIO);
    EXPECT_EQ(layer.createDirectory(folder + "/c"), EIO);
    EXPECT_THAT(namesIn(folder), testing::ElementsAre("a"));
}

} // namespace
