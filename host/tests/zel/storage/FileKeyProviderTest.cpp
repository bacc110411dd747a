#include "zel/storage/FileKeyProvider.h"

#include "ForwardingFileLayer.h"
#include "KeyProcesses.h"
#include "LogRecorder.h"
#include "StorageProfile.h"

#include <PrivateFiles.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::FaultInjectingFileLayer;
using testing_host::namesIn;
using testing_host::readFile;
using testing_host::writeFile;
using zel::storage::FileKeyProvider;
using zel::storage::FileLayer;
using zel::storage::KeyResult;
using zel::storage::MasterKey;
using zel::storage::FileCategoryType::DeviceData;
using zel::storage::FileCategoryType::UserData;
using Operation = FaultInjectingFileLayer::Operation;

namespace fs = std::filesystem;

constexpr std::size_t keyFileLength = 48;

std::string textOf(const MasterKey& key) {
    return {reinterpret_cast<const char*>(key.data()), MasterKey::length};
}

struct FileKeyProviderTest : testing::Test {
    testing_host::TemporaryProfile profile;
    FileKeyProvider provider{FileLayer::platform(), profile.data().string()};
    const fs::path folder = profile.data() / "keys";
    MasterKey key;

    std::string make() {
        EXPECT_EQ(provider.findOrMake(UserData, key), KeyResult::Found);
        return textOf(key);
    }
};

TEST_F(FileKeyProviderTest, FindDoesNotCreateAKey) {
    EXPECT_EQ(provider.find(UserData, key), KeyResult::Absent);
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(FileKeyProviderTest, EachCategoryHasItsOwnPermanentKey) {
    const std::string user = make();
    ASSERT_EQ(provider.findOrMake(DeviceData, key), KeyResult::Found);
    EXPECT_NE(textOf(key), user);
    EXPECT_THAT(namesIn(folder), ElementsAre("cat0.key", "cat2.key"));
    EXPECT_EQ(make(), user);
    ASSERT_EQ(provider.find(UserData, key), KeyResult::Found);
    EXPECT_EQ(textOf(key), user);
}

TEST_F(FileKeyProviderTest, TheKeyFileConsistsOfHeaderAndKey) {
    const std::string made = make();
    const std::string file = readFile(folder / "cat2.key");
    ASSERT_EQ(file.size(), keyFileLength);
    EXPECT_EQ(file.substr(0, 8), std::string("LUMK\x01\x02\0\0", 8));
    EXPECT_EQ(file.substr(16), made);
}

TEST_F(FileKeyProviderTest, KeysAreAccessibleToTheirOwnerOnly) {
    make();
    EXPECT_TRUE(testing_host::isPrivate(folder));
    EXPECT_TRUE(testing_host::isPrivate(folder / "cat2.key"));
}

TEST_F(FileKeyProviderTest, CreatesTheApplicationDataFolder) {
    fs::remove(profile.data());
    make();
    EXPECT_TRUE(fs::exists(folder / "cat2.key"));
}

TEST_F(FileKeyProviderTest, WithoutAnApplicationDataFolderThereAreNoKeys) {
    FileKeyProvider homeless(FileLayer::platform(), "");
    EXPECT_EQ(homeless.find(UserData, key), KeyResult::Unavailable);
    EXPECT_EQ(homeless.findOrMake(UserData, key), KeyResult::Unavailable);
    EXPECT_FALSE(fs::exists("keys"));
}

TEST_F(FileKeyProviderTest, AnyChangedByteOrLengthOfTheKeyFileIsDetected) {
    make();
    const std::string file = readFile(folder / "cat2.key");
    for (std::size_t i = 0; i < file.size(); ++i) {
        std::string changed = file;
        changed[i] = static_cast<char>(changed[i] ^ 0x10);
        writeFile(folder / "cat2.key", changed);
        EXPECT_EQ(provider.find(UserData, key), KeyResult::Malformed) << i;
    }
    for (const std::string& other : {std::string(), file.substr(1), file + "x", std::string(100'000, 'x')}) {
        writeFile(folder / "cat2.key", other);
        EXPECT_EQ(provider.find(UserData, key), KeyResult::Malformed) << other.size();
    }
    fs::copy_file(folder / "cat2.key", folder / "cat0.key");
    EXPECT_EQ(provider.find(DeviceData, key), KeyResult::Malformed);
}

TEST_F(FileKeyProviderTest, AMalformedKeyIsMovedAsideAndANewOneIsCreated) {
    const testing_host::LogRecorder log;
    const std::string before = make();
    writeFile(folder / "cat2.key", "rubbish");
    const std::string after = make();
    EXPECT_NE(after, before);
    EXPECT_THAT(namesIn(folder), ElementsAre("cat2.key", "cat2.key.bad"));
    EXPECT_EQ(readFile(folder / "cat2.key.bad"), "rubbish");
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning),
                ElementsAre("Malformed key file kept as cat2.key.bad, a new key is made"));
}

TEST_F(FileKeyProviderTest, AFolderAtThePathOfTheKeyIsMovedAside) {
    fs::create_directories(folder / "cat2.key");
    EXPECT_EQ(provider.find(UserData, key), KeyResult::Malformed);
    make();
    EXPECT_TRUE(fs::is_directory(folder / "cat2.key.bad"));
}

TEST_F(FileKeyProviderTest, AKeyThatCannotBeReadIsNotReplaced) {
    const std::string made = make();
    FaultInjectingFileLayer layer;
    FileKeyProvider faulty(layer, profile.data().string());
    for (const Operation step : {Operation::OpenForReading, Operation::Read}) {
        for (const int error : {EIO, EACCES, EMFILE}) {
            layer.failAt(step, 1, error);
            EXPECT_EQ(faulty.find(UserData, key), KeyResult::Unavailable);
            layer.failAt(step, 1, error);
            EXPECT_EQ(faulty.findOrMake(UserData, key), KeyResult::Unavailable);
        }
    }
    EXPECT_THAT(namesIn(folder), ElementsAre("cat2.key"));
    EXPECT_EQ(make(), made);
}

TEST_F(FileKeyProviderTest, AFailureAtAnyStepLeavesNoKeyOrACompleteOne) {
    FaultInjectingFileLayer counting;
    FileKeyProvider counted(counting, profile.data().string());
    ASSERT_EQ(counted.findOrMake(UserData, key), KeyResult::Found);
    const std::size_t calls = counting.getCalls().size();
    for (std::size_t call = 1; call <= calls; ++call) {
        fs::remove_all(folder);
        FaultInjectingFileLayer layer;
        FileKeyProvider faulty(layer, profile.data().string());
        layer.failAt(call, EIO);
        faulty.findOrMake(UserData, key);
        const KeyResult left = provider.find(UserData, key);
        EXPECT_THAT(left, testing::AnyOf(KeyResult::Absent, KeyResult::Found)) << "failed at " << call;
        make();
    }
}

TEST_F(FileKeyProviderTest, AReturnedKeyIsOnTheDiskAfterAPowerCut) {
    FaultInjectingFileLayer layer;
    FileKeyProvider faulty(layer, profile.data().string());
    ASSERT_EQ(faulty.findOrMake(UserData, key), KeyResult::Found);
    const std::string made = textOf(key);
    layer.cutPower(0);
    ASSERT_EQ(provider.find(UserData, key), KeyResult::Found);
    EXPECT_EQ(textOf(key), made);
}

TEST_F(FileKeyProviderTest, ThreadsThatCreateTheKeyConcurrentlyGetTheSameKey) {
    constexpr std::size_t count = 8;
    std::vector<std::string> seen(count);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < count; ++i) {
        threads.emplace_back([this, &seen, i] {
            MasterKey mine;
            if (provider.findOrMake(UserData, mine) == KeyResult::Found) {
                seen[i] = textOf(mine);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(seen, testing::Each(make()));
}

TEST_F(FileKeyProviderTest, AKeyThatAnotherThreadIsCreatingIsOnTheDiskWhenItIsReturned) {
    FaultInjectingFileLayer layer;
    std::size_t unsyncedNames = 0;
    bool isStarted = false;
    layer.setBeforeSyncDirectory([&](const std::string& path) {
        if (path != folder.string() || std::exchange(isStarted, true)) {
            return;
        }
        std::thread second([&] {
            MasterKey found;
            FileKeyProvider other(layer, profile.data().string());
            EXPECT_EQ(other.findOrMake(UserData, found), KeyResult::Found);
            unsyncedNames = layer.countUnsyncedNames();
        });
        second.join();
    });
    FileKeyProvider first(layer, profile.data().string());
    ASSERT_EQ(first.findOrMake(UserData, key), KeyResult::Found);
    ASSERT_TRUE(isStarted);
    EXPECT_EQ(unsyncedNames, 0U);
}

TEST_F(FileKeyProviderTest, AKeyWhoseNameCannotBeSyncedIsUnavailable) {
    make();
    FaultInjectingFileLayer layer;
    FileKeyProvider faulty(layer, profile.data().string());
    layer.failAt(FaultInjectingFileLayer::Operation::SyncDirectory, 1, EIO);
    EXPECT_EQ(faulty.findOrMake(UserData, key), KeyResult::Unavailable);
    EXPECT_EQ(faulty.findOrMake(UserData, key), KeyResult::Found);
}

TEST_F(FileKeyProviderTest, ProcessesThatCreateTheKeyConcurrentlyGetTheSameKey) {
    constexpr std::size_t processes = 4;
    for (int round = 0; round < 20; ++round) {
        fs::remove_all(folder);
        if (round % 2 == 1) {
            writeFile(folder / "cat2.key", "rubbish");
        }
        const std::vector<std::string> seen = testing_host::makeKeysInProcesses(profile.data().string(), processes);
        EXPECT_EQ(seen.size(), processes);
        EXPECT_THAT(seen, testing::Each(make())) << "round " << round;
        EXPECT_THAT(namesIn(folder), testing::Not(testing::Contains(testing::EndsWith(".tmp"))));
    }
}

TEST_F(FileKeyProviderTest, ALockHeldByAnotherProcessIsReportedAndNoKeyIsCreated) {
    FaultInjectingFileLayer layer;
    layer.failAt(Operation::LockDirectory, 1, ETIMEDOUT);
    FileKeyProvider waiting(layer, profile.data().string());
    const testing_host::LogRecorder log;
    EXPECT_EQ(waiting.findOrMake(UserData, key), KeyResult::Locked);
    EXPECT_THAT(
        log.getTexts(ZelLogLevel::Error),
        ElementsAre("The keys in " + folder.string() + " are locked by another process, gave up after 2 seconds"));
    EXPECT_THAT(namesIn(folder), IsEmpty());
    EXPECT_EQ(waiting.findOrMake(UserData, key), KeyResult::Found);
}

TEST_F(FileKeyProviderTest, WithoutAWorkingLockTheKeyThatIsLinkedFirstWins) {
    // Another process creates its key between the check and the link.
    class LateLayer final : public testing_host::ForwardingFileLayer {
    public:
        explicit LateLayer(FileKeyProvider& provider) : other(provider) {}
        int sync(Handle handle) override {
            MasterKey key;
            EXPECT_EQ(other.findOrMake(UserData, key), KeyResult::Found);
            theirs = textOf(key);
            return ForwardingFileLayer::sync(handle);
        }
        int lockDirectory(const std::string& path, std::chrono::milliseconds, Handle& handle) override {
            FileKind kind{};
            std::uint64_t size = 0;
            return openForReading(path, handle, kind, size);
        }

        std::string theirs;

    private:
        using FileKind = zel::storage::FileKind;
        FileKeyProvider& other;
    } layer(provider);
    FileKeyProvider late(layer, profile.data().string());
    ASSERT_EQ(late.findOrMake(UserData, key), KeyResult::Found);
    EXPECT_EQ(textOf(key), layer.theirs);
    EXPECT_EQ(make(), layer.theirs);
    EXPECT_THAT(namesIn(folder), ElementsAre("cat2.key"));
}

} // namespace
