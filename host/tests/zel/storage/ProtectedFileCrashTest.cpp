#include "LogRecorder.h"
#include "PlainText.h"
#include "StorageProfile.h"

#include <zel/EncryptFileUtils.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <string>

namespace {

using testing::AnyOf;
using testing_host::FaultInjectingFileLayer;
using testing_host::namesIn;
using testing_host::PlainText;
using testing_host::readFile;
using testing_host::StorageProfile;
using testing_host::writeFile;
using zel::storage::EncryptFileUtils;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::UserData;

namespace fs = std::filesystem;

/// The state of the disk before the disturbed write.
enum class Before { Nothing, Readable, Damaged, KeyLost, KeyMalformed };

struct ProtectedFileCrashTest : testing::TestWithParam<Before> {
    const std::string oldContent = "<old/>";
    const std::string newContent = "<new>" + std::string(500, 'x') + "</new>";
    const std::string rubbish = "rubbish";

    static void prepare(const StorageProfile& storage, const std::string& content) {
        if (GetParam() != Before::Nothing) {
            ASSERT_TRUE(EncryptFileUtils::writeDataToFile(storage.configFile("a.dat"), PlainText(content), UserData));
        }
        if (GetParam() == Before::Damaged) {
            writeFile(storage.configFile("a.dat"), "rubbish");
        }
        if (GetParam() == Before::KeyLost) {
            fs::remove_all(storage.keys());
        }
        if (GetParam() == Before::KeyMalformed) {
            writeFile(storage.keys() / "cat2.key", "rubbish");
        }
    }

    static bool write(const StorageProfile& storage, const std::string& content) {
        return EncryptFileUtils::writeDataToFile(storage.configFile("a.dat"), PlainText(content), UserData);
    }

    /// Returns the number of calls of an undisturbed write.
    std::size_t countCalls() const {
        StorageProfile storage;
        prepare(storage, oldContent);
        const std::size_t before = storage.layer->getCalls().size();
        EXPECT_TRUE(write(storage, newContent));
        return storage.layer->getCalls().size() - before;
    }

    /// Expects the old state, as far as it was readable, or the new one.
    void expectOldOrNew(StorageProfile& storage, const std::string& fileBefore, bool reported) const {
        PlainText content;
        const ReadResult result = EncryptFileUtils::readFromDisk(storage.configFile("a.dat"), content, UserData);
        if (result == ReadResult::Ok) {
            EXPECT_THAT(content.text, AnyOf(oldContent, newContent));
        } else {
            EXPECT_NE(GetParam(), Before::Readable) << "lost a readable file";
            EXPECT_EQ(readFile(storage.configFile("a.dat")), fileBefore) << "torn";
        }
        if (reported) {
            EXPECT_EQ(content.text, newContent) << "reported as written";
        }
    }
};

TEST_P(ProtectedFileCrashTest, AFailureAtAnyCallLeavesTheOldOrNewContentAndNoTemporaryFile) {
    const std::size_t calls = countCalls();
    for (std::size_t call = 1; call <= calls; ++call) {
        for (const int error : {EIO, ENOSPC}) {
            SCOPED_TRACE("call " + std::to_string(call));
            StorageProfile storage;
            prepare(storage, oldContent);
            const std::string fileBefore = readFile(storage.configFile("a.dat"));
            const std::size_t callsBefore = storage.layer->getCalls().size();
            storage.layer->failAt(call, error);
            const bool reported = write(storage, newContent);
            storage.layer->heal();
            expectOldOrNew(storage, fileBefore, reported);
            // A name remains only if its removal failed, until it is old enough to be cleaned up.
            if (storage.layer->getCalls().at(callsBefore + call - 1) != FaultInjectingFileLayer::Operation::Unlink) {
                EXPECT_THAT(namesIn(storage.profile.config()),
                            testing::Not(testing::Contains(testing::EndsWith(".tmp"))));
            }
            EXPECT_TRUE(write(storage, newContent)) << "the next write";
            expectOldOrNew(storage, fileBefore, true);
        }
    }
}

TEST_P(ProtectedFileCrashTest, APowerCutAtAnyCallLeavesTheOldOrNewContent) {
    const std::size_t calls = countCalls();
    for (std::size_t call = 1; call <= calls + 1; ++call) {
        std::size_t pending = 0;
        for (std::size_t kept = 0; kept <= pending; ++kept) {
            SCOPED_TRACE("died at call " + std::to_string(call) + ", kept " + std::to_string(kept));
            StorageProfile storage;
            prepare(storage, oldContent);
            storage.layer->cutPower(storage.layer->countUnsyncedNames());
            const std::string fileBefore = readFile(storage.configFile("a.dat"));
            storage.layer->dieAt(call);
            const bool reported = write(storage, newContent);
            pending = storage.layer->countUnsyncedNames();
            storage.layer->cutPower(kept);
            expectOldOrNew(storage, fileBefore, reported);
            EXPECT_TRUE(write(storage, newContent)) << "the next run";
            expectOldOrNew(storage, fileBefore, true);
        }
    }
}

TEST_P(ProtectedFileCrashTest, AFullDiskLeavesTheOldFileUnchanged) {
    StorageProfile storage;
    prepare(storage, oldContent);
    const std::string fileBefore = readFile(storage.configFile("a.dat"));
    for (std::size_t space = 0; space < newContent.size(); space += 7) {
        storage.layer->setFreeSpace(space);
        EXPECT_FALSE(write(storage, newContent));
        EXPECT_EQ(readFile(storage.configFile("a.dat")), fileBefore);
    }
    storage.layer->heal();
    EXPECT_TRUE(write(storage, newContent));
}

INSTANTIATE_TEST_SUITE_P(States, ProtectedFileCrashTest,
                         testing::Values(Before::Nothing, Before::Readable, Before::Damaged, Before::KeyLost,
                                         Before::KeyMalformed));

} // namespace
