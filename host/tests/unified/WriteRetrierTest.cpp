#include "unified/WriteRetrier.h"

#include "../zel/storage/PlainText.h"
#include "../zel/storage/StorageProfile.h"

#include <zel/EncryptFileUtils.h>

#include <HeldTaskDispatcher.h>
#include <LogRecorder.h>
#include <ManualClock.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <string>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_host::HeldTaskDispatcher;
using testing_host::PlainText;
using zel::storage::EncryptFileUtils;
using zel::storage::FileCategoryType::UserData;
using ZelUnified::WriteRetrier;
using Operation = testing_host::FaultInjectingFileLayer::Operation;

namespace {

class WriteRetrierTest : public testing::Test {
protected:
    void SetUp() override {
        // Creates the key while there is space.
        ASSERT_TRUE(EncryptFileUtils::writeDataToFile(storage.configFile("first.dat"), PlainText("first"), UserData));
        storage.layer->setFreeSpace(0);
        retrier->start();
    }
    void TearDown() override { retrier->finish(std::chrono::milliseconds(0)); }

    void failToWrite(const std::string& text = "new") {
        EXPECT_FALSE(EncryptFileUtils::writeDataToFile(path, PlainText(text), UserData));
    }
    std::string onDisk() const {
        PlainText content;
        EncryptFileUtils::readFromDisk(path, content, UserData);
        return content.text;
    }
    /// Returns true if a retry is queued after this number of seconds and not before.
    bool retriesAfter(std::int64_t seconds) {
        clock.advance(seconds - 1);
        const bool early = !background->getTaskNames().empty();
        clock.advance(1);
        const bool onTime = background->getTaskNames().size() == 1;
        background->runAll();
        return !early && onTime;
    }

    testing_host::ManualClock clock;
    testing_host::StorageProfile storage;
    const std::string path = storage.configFile("settings.dat");
    const std::shared_ptr<HeldTaskDispatcher> background = std::make_shared<HeldTaskDispatcher>();
    const std::shared_ptr<WriteRetrier> retrier = std::make_shared<WriteRetrier>(background);
};

} // namespace

TEST_F(WriteRetrierTest, RetriesOnTheBackgroundDispatcherWithDelaysThatDoubleUpToAMinute) {
    EXPECT_EQ(clock.getPendingCount(), 0U);
    failToWrite();
    for (const int delay : {1, 2, 4, 8, 16, 32, 60, 60}) {
        EXPECT_TRUE(retriesAfter(delay)) << delay;
    }
    storage.layer->heal();
    EXPECT_EQ(onDisk(), "");
    EXPECT_TRUE(retriesAfter(60));
    EXPECT_EQ(onDisk(), "new");
    EXPECT_EQ(clock.getPendingCount(), 0U);
    storage.layer->setFreeSpace(0);
    failToWrite("newer");
    EXPECT_TRUE(retriesAfter(1)) << "the delay starts again at its first value";
}

TEST_F(WriteRetrierTest, FurtherFailuresShareThePendingTimer) {
    failToWrite();
    clock.advance(0);
    failToWrite("newer");
    EXPECT_EQ(clock.getPendingCount(), 1U);
    storage.layer->heal();
    EXPECT_TRUE(retriesAfter(1));
    EXPECT_EQ(onDisk(), "newer");
}

TEST_F(WriteRetrierTest, RetryNowWritesImmediately) {
    failToWrite();
    storage.layer->heal();
    WriteRetrier::retryNow();
    EXPECT_EQ(onDisk(), "new");
    EXPECT_TRUE(retriesAfter(1)) << "nothing is pending";
    EXPECT_EQ(clock.getPendingCount(), 0U);
}

TEST_F(WriteRetrierTest, FinishRetriesUntilTheWriteSucceeds) {
    failToWrite();
    storage.layer->heal();
    const testing_host::LogRecorder log;
    for (std::size_t call = 1; call <= 3; ++call) {
        storage.layer->failAt(Operation::CreateFile, call, ENOSPC);
    }
    retrier->finish(std::chrono::minutes(1));
    EXPECT_EQ(onDisk(), "new");
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), IsEmpty());
    EXPECT_EQ(clock.getPendingCount(), 0U);
}

TEST_F(WriteRetrierTest, FinishLogsAndDropsContentItCannotWrite) {
    failToWrite();
    const testing_host::LogRecorder log;
    retrier->finish(std::chrono::milliseconds(0));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("Lost the content of protected file " + path + ", not written: No space left on device"));
    EXPECT_EQ(clock.getPendingCount(), 0U);
    storage.layer->heal();
    EXPECT_TRUE(EncryptFileUtils::retryPendingWrites());
    EXPECT_EQ(onDisk(), "");
}

TEST_F(WriteRetrierTest, AFailureAfterFinishStartsNoTimer) {
    retrier->finish(std::chrono::milliseconds(0));
    failToWrite();
    EXPECT_EQ(clock.getPendingCount(), 0U);
}
