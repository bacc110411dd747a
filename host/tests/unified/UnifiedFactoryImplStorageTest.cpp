#include "../zel/storage/PlainText.h"
#include "../zel/storage/StorageProfile.h"
#include "UnifiedFactoryImplFixture.h"
#include "plugins/PluginFeatureSet.h"
#include "zel/SystemMonitorImpl.h"

#include <kyr/FileUtils.h>
#include <unified/SystemService.h>
#include <zel/EncryptFileUtils.h>

#include <LogRecorder.h>
#include <ManualClock.h>
#include <Signal.h>
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

using namespace unified_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing_host::PlainText;
using testing_host::writeFile;
using zel::storage::EncryptFileUtils;
using zel::storage::FileCategoryType::DeviceData;
using zel::storage::FileCategoryType::FileCategory;
using zel::storage::FileCategoryType::UserData;

namespace {

/// A factory with protected files on a disk that is full until heal().
class UnifiedFactoryImplStorageTest : public UnifiedFactoryImplTest {
protected:
    UnifiedFactoryImplStorageTest() { storage.layer->setFreeSpace(0); }

    void TearDown() override {
        storage.layer->heal();
        UnifiedFactoryImplTest::TearDown();
    }

    void failToWrite(const std::string& to, FileCategory category = UserData) {
        EXPECT_FALSE(EncryptFileUtils::writeDataToFile(to, PlainText("new"), category));
    }
    static std::string onDisk(const std::string& from, FileCategory category = UserData) {
        PlainText content;
        EncryptFileUtils::readFromDisk(from, content, category);
        return content.text;
    }
    std::string onDisk() const { return onDisk(path); }

    testing_host::ManualClock clock;
    testing_host::StorageProfile storage;
    const std::string path = storage.configFile("settings.dat");
};

class PowerDownObserver final : public ZelSystemMonitor::PowerEventObserver {
public:
    explicit PowerDownObserver(std::function<void()> function) : work(std::move(function)) {}
    void onPowerEvent(ZelSystemMonitor::PowerEventTypeEnum::PowerEventType) override { work(); }

private:
    const std::function<void()> work;
};

} // namespace

TEST_F(UnifiedFactoryImplStorageTest, FlushingTheBackgroundDispatcherRetriesFailedWrites) {
    factory->getBackgroundDispatcher()->enqueue([&] { failToWrite(path); }, "write");
    factory->flushBackgroundDispatcher();
    EXPECT_EQ(onDisk(), "");
    storage.layer->heal();
    factory->flushBackgroundDispatcher();
    EXPECT_EQ(onDisk(), "new");
}

TEST_F(UnifiedFactoryImplStorageTest, FlushingOnADispatchersThreadRetriesFailedWrites) {
    failToWrite(path);
    storage.layer->heal();
    onServicesThread([&] { factory->flushBackgroundDispatcher(); });
    EXPECT_EQ(onDisk(), "new");
    storage.layer->setFreeSpace(0);
    const std::string other = storage.configFile("other.dat");
    failToWrite(other);
    storage.layer->heal();
    testing_host::Signal done;
    factory->getBackgroundDispatcher()->enqueue(
        [&] {
            factory->StopFeatureSet(id, nullptr);
            done.set();
        },
        "stop");
    ASSERT_TRUE(done.wait());
    EXPECT_EQ(onDisk(other), "new");
}

TEST_F(UnifiedFactoryImplStorageTest, AStopRetriesFailedWrites) {
    fileFeatureSet();
    factory->StartFeatureSet(id, nullptr);
    failToWrite(path);
    storage.layer->heal();
    factory->StopFeatureSet(id, nullptr);
    EXPECT_EQ(onDisk(), "new");
}

TEST_F(UnifiedFactoryImplStorageTest, FailedWritesAreRetriedOnTheBackgroundDispatcherAfterADelay) {
    failToWrite(path);
    storage.layer->heal();
    clock.advance(1);
    testing_host::Signal done;
    factory->getBackgroundDispatcher()->enqueue([&] { done.set(); }, "behind the retry");
    ASSERT_TRUE(done.wait());
    EXPECT_EQ(onDisk(), "new");
}

TEST_F(UnifiedFactoryImplStorageTest, DestroyRetriesAFailedWriteOfTheLastTask) {
    fileFeatureSet();
    featureSet->onDestroy = [&] {
        factory->getBackgroundDispatcher()->enqueue([&] { failToWrite(path); }, "last write");
        storage.layer->setFreeSpace(1'000'000); // enough for all writes except this one
        storage.layer->failAt(testing_host::FaultInjectingFileLayer::Operation::CreateFile, 1, ENOSPC);
    };
    failToWrite(storage.configFile("other.dat"));
    factory->Destroy();
    EXPECT_EQ(onDisk(), "new");
    EXPECT_EQ(onDisk(storage.configFile("other.dat")), "new");
}

TEST_F(UnifiedFactoryImplStorageTest, DestroyLogsLostContentAndEndsTheRetries) {
    UnifiedFactoryOptions options;
    options.lastRetries = std::chrono::milliseconds(0);
    const auto ending = std::make_shared<UnifiedFactoryImpl>(options);
    ending->Init();
    failToWrite(path);
    const testing_host::LogRecorder log;
    ending->Destroy();
    EXPECT_TRUE(log.mentions("Lost the content of protected file " + path));
    EXPECT_EQ(clock.getPendingCount(), 0U);
    storage.layer->heal();
    EXPECT_TRUE(EncryptFileUtils::retryPendingWrites());
    EXPECT_EQ(onDisk(), "");
}

TEST_F(UnifiedFactoryImplStorageTest, DestroyRetriesForTwoSecondsAtMost) {
    EXPECT_EQ(UnifiedFactoryOptions().lastRetries, std::chrono::seconds(2));
}

TEST_F(UnifiedFactoryImplStorageTest, ADataResetDropsPendingUserDataBeforeCallingTheCallbacks) {
    const std::string never = storage.configFile("never.dat");
    const std::string device = storage.configFile("cachedUrlProvisioningConfigStore.dat");
    failToWrite(never);
    failToWrite(device, DeviceData);
    bool wasThere = true;
    const auto callback = std::make_shared<ResetCallback>([&](int) {
        wasThere = KyrCoreUtils::FileUtils::fileExists(never);
        storage.layer->heal();
    });
    factory->getServiceByType<SystemService>()->getResetDataCallbackRegistry()->add(0, callback);
    factory->invokeResetData(ResetDataOptionEnum::ResetAll);
    EXPECT_FALSE(wasThere);
    EXPECT_FALSE(std::filesystem::exists(never));
    EXPECT_EQ(onDisk(device, DeviceData), "new") << "a reset does not delete it";
}

TEST_F(UnifiedFactoryImplStorageTest, APowerDownObserverIsCalledAfterTheQueuedWrites) {
    storage.layer->heal();
    testing_host::Signal told;
    std::string before;
    const auto observer = std::make_shared<PowerDownObserver>([&] {
        before = onDisk();
        told.set();
    });
    const auto monitor = ZelSystemMonitor::SystemMonitorImpl::getMachineMonitor();
    monitor->addPowerEventObserver(observer);
    testing_host::Signal announced;
    factory->getBackgroundDispatcher()->enqueue(
        [&] {
            EXPECT_TRUE(announced.wait());
            EXPECT_TRUE(EncryptFileUtils::writeDataToFile(path, PlainText("queued"), UserData));
        },
        "queued write");
    monitor->receive(ZelSystemMonitor::PowerEventTypeEnum::PowerDown, nullptr);
    announced.set();
    ASSERT_TRUE(told.wait());
    EXPECT_EQ(before, "queued");
}

TEST_F(UnifiedFactoryImplStorageTest, DestroyDropsChangesInMemory) {
    storage.layer->heal();
    UnifiedFactoryOptions options;
    options.changesInMemory = true;
    const auto reading = std::make_shared<UnifiedFactoryImpl>(options);
    reading->Init();
    EXPECT_TRUE(EncryptFileUtils::writeDataToFile(path, PlainText("new"), UserData));
    EXPECT_TRUE(KyrCoreUtils::FileUtils::fileExists(path));
    EXPECT_FALSE(std::filesystem::exists(path));
    reading->Destroy();
    EXPECT_FALSE(KyrCoreUtils::FileUtils::fileExists(path));
    EXPECT_TRUE(EncryptFileUtils::writeDataToFile(path, PlainText("new"), UserData));
    EXPECT_EQ(onDisk(), "new");
}

TEST_F(UnifiedFactoryImplStorageTest, AProfileOpenedForWritingIsCheckedBeforeAPlugInIsLoaded) {
    storage.layer->heal();
    const auto damaged = storage.profile.config() / "lumoraLocalConfig_backup.dat";
    for (const bool forWriting : {false, true}) {
        writeFile(damaged, "rubbish");
        UnifiedFactoryOptions options;
        options.openedForWriting = forWriting;
        options.pluginFolder = HOST_TEST_PLUGIN_FOLDER;
        options.plugins = {{"host_tests::PluginFeatureSet", "good_plugin.so"}};
        const auto opened = std::make_shared<UnifiedFactoryImpl>(options);
        opened->Init();
        EXPECT_EQ(std::filesystem::exists(damaged), !forWriting);
        EXPECT_NE(opened->getFeatureSetByType<host_tests::PluginFeatureSet>(), nullptr);
        opened->Destroy();
    }
    EXPECT_EQ(testing_host::readFile(damaged.string() + ".unreadable"), "rubbish");
    EXPECT_EQ(EncryptFileUtils::health(storage.profile.config().string()).movedAside.size(), 1U);
}

TEST_F(UnifiedFactoryImplStorageTest, AProfileOpenedForWritingLosesTheOldTemporaryFilesOfKilledWriters) {
    const std::string name = ".any.0123456789abcdef.tmp";
    const auto& profile = storage.profile;
    const auto folders = {profile.config() / "Cache", profile.data() / "keys", profile.data() / "registry"};
    for (const auto& folder : folders) {
        std::filesystem::create_directories(folder);
        writeFile(folder / name, "torn");
        std::filesystem::last_write_time(folder / name,
                                         std::filesystem::file_time_type::clock::now() - std::chrono::minutes(30));
    }
    for (const bool forWriting : {false, true}) {
        UnifiedFactoryOptions options;
        options.openedForWriting = forWriting;
        const auto opened = std::make_shared<UnifiedFactoryImpl>(options);
        opened->Init();
        opened->Destroy();
        for (const auto& folder : folders) {
            EXPECT_EQ(std::filesystem::exists(folder / name), !forWriting) << folder;
        }
    }
}
