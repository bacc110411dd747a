#include "LocalFileWritingFixture.h"
#include "featuresets/adapters/config/xml/XmlTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using xml_test::readProtected;
using xml_test::valueOf;
using ZelUnified::LocalFileConfigStore;

namespace {

namespace fs = std::filesystem;

enum class State { Absent, Readable, Bad };

class LocalFileConfigStoreBackupTest : public xml_test::LocalFileWritingFixture {
protected:
    static void put(const std::string& path, State state) {
        fs::remove(path);
        if (state == State::Readable) {
            ASSERT_TRUE(xml_test::writeProtected(path, "<old/>"));
        } else if (state == State::Bad) {
            testing_host::writeFile(path, "garbage");
        }
    }
};

} // namespace

TEST_F(LocalFileConfigStoreBackupTest, RefusesToWriteAFileIfOnlyItsCounterpartIsUnreadable) {
    const auto refused = [](const std::string& target) {
        return "Failed to read lumoraLocalConfig/backup file, so don't write to " + target + " to keep file good.";
    };
    const auto broken = [](const std::string& target) { return "Both files are broken, write to " + target; };
    int round = 0;
    for (const State target : {State::Absent, State::Readable, State::Bad}) {
        for (const State counterpart : {State::Absent, State::Readable, State::Bad}) {
            for (const bool isMain : {true, false}) {
                store->storeValue(L"Key", L"v" + std::to_wstring(++round));
                put(main, State::Absent);
                put(backup, State::Absent);
                if (!isMain) {
                    store->persistValues();
                }
                put(isMain ? main : backup, target);
                put(isMain ? backup : main, counterpart);
                const std::string& path = isMain ? main : backup;
                const std::string before = testing_host::readFile(path);
                log.clear();
                isMain ? store->persistValues() : fireBackup();
                const std::string name = isMain ? mainName : backupName;
                SCOPED_TRACE(name + " target " + std::to_string(static_cast<int>(target)) + " counterpart " +
                             std::to_string(static_cast<int>(counterpart)));
                if (counterpart != State::Bad) {
                    EXPECT_THAT(readProtected(path), HasSubstr("value=\"v" + std::to_string(round)));
                    EXPECT_THAT(errors(), IsEmpty());
                } else if (target == State::Bad) {
                    EXPECT_THAT(readProtected(path), HasSubstr("value=\"v" + std::to_string(round)));
                    EXPECT_THAT(errors(), ElementsAre(broken(name)));
                } else {
                    EXPECT_EQ(testing_host::readFile(path), before);
                    EXPECT_EQ(fs::exists(path), target == State::Readable);
                    EXPECT_THAT(errors(), ElementsAre(refused(name)));
                }
            }
        }
    }
}

TEST_F(LocalFileConfigStoreBackupTest, RepairsACorruptBackupAndThenWritesTheMainFile) {
    store->storeValue(L"Key", L"old");
    store->persistValues();
    put(backup, State::Bad);
    store->storeValue(L"Key", L"v");
    store->persistValues();
    EXPECT_THAT(readProtected(main), HasSubstr("\"old\""));
    EXPECT_THAT(errors(), ElementsAre("Failed to read lumoraLocalConfig/backup file, so don't write to "
                                      "lumoraLocalConfig.dat to keep file good."));
    EXPECT_EQ(valueOf(*store, L"Key"), L"v");
    ASSERT_EQ(timer->requests.size(), 2U); // also after a refused write
    fireBackup();
    EXPECT_EQ(readProtected(backup), document);
    store->persistValues(); // the values still differ from the file after the refused write
    EXPECT_EQ(readProtected(main), document);
}

TEST_F(LocalFileConfigStoreBackupTest, ChecksThatTheMainFileDecryptsAndNotItsXml) {
    ASSERT_TRUE(xml_test::writeProtected(backup, "no xml"));
    store->storeValue(L"Key", L"v");
    store->persistValues();
    EXPECT_EQ(readProtected(main), document);
    EXPECT_TRUE(store->checkIfGoodToWrite(mainName, false));
    put(backup, State::Bad);
    EXPECT_FALSE(store->checkIfGoodToWrite(mainName, false));
    EXPECT_TRUE(store->checkIfGoodToWrite(mainName, true));
    EXPECT_TRUE(store->checkIfGoodToWrite(backupName, false));
    EXPECT_FALSE(store->checkIfGoodToWrite(backupName, true));
    EXPECT_TRUE(store->checkIfGoodToWrite("any other", false));
}

TEST_F(LocalFileConfigStoreBackupTest, SchedulesNoBackupUnderAnotherNameOrWithoutATimer) {
    LocalFileConfigStore other("localfileconfigstore", 20, false);
    other.setTimer(timer);
    other.storeValue(L"Key", L"v");
    other.persistValues();
    EXPECT_THAT(timer->requests, IsEmpty());
    LocalFileConfigStore without(userName, 20, false);
    without.storeValue(L"Key", L"w");
    without.persistValues();
    EXPECT_THAT(readProtected(main), HasSubstr("\"w\""));
}

TEST_F(LocalFileConfigStoreBackupTest, WritesNoBackupOfAStoreThatIsNotShared) {
    LocalFileConfigStore unshared(userName, 20, false);
    unshared.setTimer(timer);
    unshared.storeValue(L"Key", L"v");
    unshared.persistValues();
    fireBackup();
    EXPECT_EQ(readProtected(main), document);
    EXPECT_FALSE(fs::exists(backup));
}

TEST_F(LocalFileConfigStoreBackupTest, SchedulesTheBackupAfterTheSetInterval) {
    store->setInterval(5);
    store->storeValue(L"Key", L"v");
    store->persistValues();
    EXPECT_EQ(timer->requests.at(0).milliseconds, 5);
}

TEST_F(LocalFileConfigStoreBackupTest, WritesNoBackupOfADestroyedStore) {
    store->storeValue(L"Key", L"v");
    store->persistValues();
    store.reset();
    fireBackup();
    EXPECT_FALSE(fs::exists(backup));
}
