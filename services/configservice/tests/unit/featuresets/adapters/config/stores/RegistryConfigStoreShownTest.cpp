#include "FeatureSetMock.h"
#include "RegistryConfigStoreFixture.h"

#include <LogRecorder.h>
#include <PrivateFiles.h>
#include <RecordingFactory.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace ZelUnified {

using namespace zel::registry;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrictMock;
using testing_host::LogRecorder;
using testing_host::readFile;
using testing_host::writeFile;

constexpr const char* loggerName = "ConfigService-RegistryConfigStore";

TEST_F(RegistryConfigStoreTest, TheTableIsLoggedInOneLineWithPasswordsHidden) {
    setText(L"", L"ServicesDomain", L"example.com");
    setText(L"", L"BDIConnectionPassword", L"swordfish");
    setText(L"", L"MyconnectionPASSWORDOld", L"swordfish");
    setText(L"", L"ConnectionUsername", L"anna@example.com");
    LogRecorder log;
    makeStore();
    const auto records = log.getRecords();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].logger, loggerName);
    EXPECT_EQ(records[0].level, ZelLogLevel::Info);
    EXPECT_EQ(records[0].function, "ZelUnified::RegistryConfigStore::logConfigMap");
    EXPECT_EQ(records[0].text, "\nBDIConnectionPassword: VALUE_HIDDEN"
                               "\nConnectionUsername: anna@example.com"
                               "\nMyconnectionPASSWORDOld: VALUE_HIDDEN"
                               "\nServicesDomain: example.com");
}

TEST_F(RegistryConfigStoreTest, TheTextCopyHidesPasswordsThatTheStoreReturns) {
    setText(L"", L"BDIConnectionPassword", L"swordfish");
    setText(L"", L"Gr\u00fc\u00dfe", L"\u4e2d");
    EXPECT_EQ(readBack(L"bdiconnectionpassword"), L"swordfish");
    EXPECT_EQ(readFile(textFile), "BDIConnectionPassword: VALUE_HIDDEN\nGr\xC3\xBC\xC3\x9F"
                                  "e: \xE4\xB8\xAD\n");
}

TEST_F(RegistryConfigStoreTest, TheTextCopyIsAccessibleToItsOwnerOnlyWithAnyUmask) {
    setText(L"", L"Key", L"value");
    const auto before = ::umask(0);
    makeStore();
    ::umask(before);
    EXPECT_TRUE(testing_host::isPrivate(textFile));
}

TEST_F(RegistryConfigStoreTest, TheTextCopyOfTheLastConstructedStoreReplacesAnEarlierOne) {
    setText(L"", L"Key", L"a longer value than the next one");
    RegistryConfigStore first(nullptr, "First", 1, "Policies\\Client");
    registry->setText(HKEY_CURRENT_USER, L"Software\\Other", L"k", L"v");
    RegistryConfigStore second(nullptr, "Second", 2, "Other");
    EXPECT_EQ(readFile(textFile), "k: v\n");
}

TEST_F(RegistryConfigStoreTest, AnEmptyTableDeletesTheTextCopyAndCreatesNone) {
    writeFile(textFile, "from an earlier run");
    makeStore();
    EXPECT_FALSE(std::filesystem::exists(textFile));
}

TEST_F(RegistryConfigStoreTest, ALinkAtThePathOfTheTextCopyIsNotFollowed) {
    writeFile(profile.root() / "elsewhere", "precious");
    std::filesystem::create_symlink(profile.root() / "elsewhere", textFile);
    setText(L"", L"Key", L"value");
    makeStore();
    EXPECT_EQ(readFile(profile.root() / "elsewhere"), "precious");
    EXPECT_EQ(readFile(textFile), "Key: value\n");
}

TEST_F(RegistryConfigStoreTest, ADanglingLinkAtThePathOfTheTextCopyIsReplacedWithoutCreatingItsTarget) {
    std::filesystem::create_symlink(profile.root() / "elsewhere", textFile);
    setText(L"", L"Key", L"value");
    makeStore();
    EXPECT_FALSE(std::filesystem::exists(profile.root() / "elsewhere"));
    EXPECT_FALSE(std::filesystem::is_symlink(textFile));
    EXPECT_EQ(readFile(textFile), "Key: value\n");
}

TEST_F(RegistryConfigStoreTest, AnEmptyTableDeletesADanglingLinkAtThePathOfTheTextCopy) {
    std::filesystem::create_symlink(profile.root() / "elsewhere", textFile);
    makeStore();
    EXPECT_FALSE(std::filesystem::is_symlink(textFile));
}

TEST_F(RegistryConfigStoreTest, WithoutAConfigurationDirectoryNoTextCopyIsCreatedAndNoErrorLogged) {
    std::filesystem::remove(profile.config());
    setText(L"", L"Key", L"value");
    LogRecorder log;
    EXPECT_EQ(readBack(L"Key"), L"value");
    EXPECT_FALSE(std::filesystem::exists(profile.config()));
    EXPECT_EQ(log.getRecords().size(), 1U);
}

TEST_F(RegistryConfigStoreTest, AFolderAtThePathOfTheTextCopyIsKept) {
    std::filesystem::create_directory(textFile);
    setText(L"", L"Key", L"value");
    EXPECT_EQ(readBack(L"Key"), L"value");
    EXPECT_TRUE(std::filesystem::is_directory(textFile));
}

TEST_F(RegistryConfigStoreTest, PasswordsAreMarkedSensitiveBeforeTheTableIsLogged) {
    setText(L"", L"BDIConnectionPassword", L"swordfish");
    setText(L"", L"connectionusername", L"anna");
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    const auto featureSet = std::make_shared<StrictMock<FeatureSetMock>>();
    factory->getFeatureSets().registerItem<ConfigFeatureSet>(1300, featureSet);
    writeFile(textFile, "old");
    LogRecorder log;
    EXPECT_CALL(*featureSet, setKeySensitive(std::wstring(L"BDIConnectionPassword"))).WillOnce([&] {
        EXPECT_THAT(log.getRecords(), IsEmpty());
        EXPECT_EQ(readFile(textFile), "old");
    });
    RegistryConfigStore store(factory, "RegistryConfigStore", 30, "Policies\\Client");
    EXPECT_EQ(log.getRecords().size(), 1U);
    factory->Destroy();
}

TEST_F(RegistryConfigStoreTest, WithoutAFeatureSetNoKeyIsMarkedAsSensitive) {
    setText(L"", L"BDIConnectionPassword", L"swordfish");
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    RegistryConfigStore store(factory, "RegistryConfigStore", 30, "Policies\\Client");
    EXPECT_THAT(store.getKeys(), ElementsAre(L"BDIConnectionPassword"));
    factory->Destroy();
}

} // namespace ZelUnified
