#include "ConfigStoreConformance.h"
#include "LocalFileTestSupport.h"
#include "featuresets/adapters/config/stores/LocalFileDocument.h"
#include "featuresets/adapters/config/xml/XmlTestSupport.h"
#include "secure/SecureString.h"
#include "table/ConfigTable.h"

#include <zel/ZelLog.h>

#include <CacheConfigStore.h>
#include <LogRecorder.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

using testing::ElementsAre;
using testing::IsEmpty;
using xml_test::valueOf;
using ZelUnified::LocalFileConfigStore;

namespace {

namespace fs = std::filesystem;

constexpr const char* loggerName = "ConfigService-LocalFileConfigStore";
constexpr const char* userName = "LocalFileConfigStore";
constexpr const char* syntaxLine = "Error Invalid XML syntax detected - Unable to read localFileConfigStore "
                                   "configuration";

class LocalFileConfigStoreTest : public testing::Test {
protected:
    /// Returns a plain, read-only store in the resources folder.
    LocalFileConfigStore plain(const std::string& file, const std::string& name = "Name") {
        return {name, 7, profile.resources().string(), file, true, true, false};
    }

    std::string document(const std::string& value) { return "<r><userConfig name='Key' value='" + value + "'/></r>"; }

    testing_host::TemporaryProfile profile;
    const std::string main = (profile.config() / "lumoraLocalConfig.dat").string();
    const std::string backup = (profile.config() / "lumoraLocalConfig_backup.dat").string();
    const testing_host::LogRecorder log;
};

} // namespace

namespace ZelUnified {

INSTANTIATE_TEST_SUITE_P(
    LocalFileConfigStore, ConfigStoreConformance,
    testing::Values(StoreKind{
        "LocalFile",
        [](const testing_host::TemporaryProfile&, const ConfigMap& values) -> std::shared_ptr<ConfigStore> {
            auto store = std::make_shared<LocalFileConfigStore>("LocalFileConfigStore", 20, false);
            for (const auto& [key, value] : values) {
                store->storeValue(key, value);
            }
            store->persistValues();
            return std::make_shared<LocalFileConfigStore>("LocalFileConfigStore", 20, false);
        },
        "LocalFileConfigStore", 20, false, false, StoreKind::Writes::Accepted, StoreKind::Emptying::Done}),
    storeKindLabel);

INSTANTIATE_TEST_SUITE_P(
    DefaultsFile, ConfigStoreConformance,
    testing::Values(StoreKind{
        "Defaults",
        [](const testing_host::TemporaryProfile& profile, const ConfigMap& values) -> std::shared_ptr<ConfigStore> {
            zel::SecureString content;
            ZelUnified::ConfigTable table(values);
            LocalFileDocument::getDataString(table, content);
            content.withClearText(
                [&](std::string_view text) { testing_host::writeFile(profile.resources() / "d.xml", text); });
            return std::make_shared<LocalFileConfigStore>("d.xml", std::numeric_limits<int>::max(),
                                                          profile.resources().string(), "d.xml", true, true, false);
        },
        "d.xml", std::numeric_limits<int>::max(), true, true, StoreKind::Writes::Accepted, StoreKind::Emptying::Done}),
    storeKindLabel);

} // namespace ZelUnified

TEST_F(LocalFileConfigStoreTest, ReadsAPlainFile) {
    testing_host::writeFile(profile.resources() / "defaults.xml", document("v"));
    auto store = plain("defaults.xml");
    EXPECT_EQ(valueOf(store, L"KEY"), L"v");
    EXPECT_THAT(store.getKeys(), ElementsAre(L"key"));
    std::wstring value = L"left over";
    EXPECT_FALSE(store.getValue(L"absent", value));
    EXPECT_EQ(value, L"");
    EXPECT_THAT(log.getTexts(loggerName), IsEmpty());
}

TEST_F(LocalFileConfigStoreTest, ReturnsNamePriorityAndKind) {
    auto defaults = plain("defaults.xml");
    EXPECT_EQ(defaults.getName(), "Name");
    EXPECT_EQ(defaults.getPriority(), 7);
    EXPECT_EQ(defaults.getCachedPriority(), 8);
    EXPECT_TRUE(defaults.isLocal());
    EXPECT_TRUE(defaults.isReadOnly());
    EXPECT_TRUE(defaults.waitForStoreReady());
    EXPECT_FALSE(defaults.shouldCacheConfigStore());
    LocalFileConfigStore user(userName, 20, false);
    EXPECT_FALSE(user.isLocal());
    EXPECT_FALSE(user.isReadOnly());
}

TEST_F(LocalFileConfigStoreTest, LogsAWarningForAMissingPlainFile) {
    auto store = plain("defaults.xml");
    EXPECT_THAT(store.getKeys(), IsEmpty());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), ElementsAre("Read config FAILED, config file doesn't exist: " +
                                                                (profile.resources() / "defaults.xml").string()));
    EXPECT_EQ(log.getRecords().size(), 1U);
}

TEST_F(LocalFileConfigStoreTest, JoinsDirectoryAndFileUnchanged) {
    const std::string folder = profile.resources().string() + "/";
    LocalFileConfigStore(std::string("Name"), 7, folder, "a.xml", true, true, false);
    LocalFileConfigStore(std::string("Name"), 7, "", "no-such-file.xml", true, true, false);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning),
                ElementsAre("Read config FAILED, config file doesn't exist: " + folder + "/a.xml",
                            "Read config FAILED, config file doesn't exist: no-such-file.xml"));
}

TEST_F(LocalFileConfigStoreTest, MovesAMalformedPlainFileAside) {
    const fs::path bad = profile.resources() / "settings.b.xml";
    testing_host::writeFile(bad, "<r>");
    testing_host::writeFile(profile.resources() / "settings.b-backup.xml", "older");
    testing::internal::CaptureStderr();
    auto store = plain("settings.b.xml");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_THAT(store.getKeys(), IsEmpty());
    EXPECT_FALSE(fs::exists(bad));
    EXPECT_EQ(testing_host::readFile(profile.resources() / "settings.b-backup.xml"), "<r>");
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre(std::string(syntaxLine) +
                                "\nrenaming invalid file to: settings.b-backup.xml and creating new blank XML document",
                            "contents of invalid xml with string length: 3\n<r>"));
}

TEST_F(LocalFileConfigStoreTest, MovesACompressedPlainFileAside) {
    testing_host::writeFile(profile.resources() / "defaults.xml", xml_test::gzipped());
    auto store = plain("defaults.xml");
    EXPECT_THAT(store.getKeys(), IsEmpty());
    EXPECT_EQ(testing_host::readFile(profile.resources() / "defaults-backup.xml"), xml_test::gzipped());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre(std::string(syntaxLine) +
                                "\nrenaming invalid file to: defaults-backup.xml and creating new blank XML document",
                            "contents of invalid xml with string length: 40\n" + xml_test::gzipped()));
}

TEST_F(LocalFileConfigStoreTest, LogsAnErrorIfAMalformedPlainFileCannotBeMoved) {
    testing_host::writeFile(profile.resources() / "defaults.xml", "");
    const fs::path target = profile.resources() / "defaults-backup.xml";
    testing_host::writeFile(target / "inside", "a folder is in the way");
    auto store = plain("defaults.xml");
    EXPECT_THAT(store.getKeys(), IsEmpty());
    EXPECT_TRUE(fs::exists(profile.resources() / "defaults.xml"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre(std::string(syntaxLine) + "\nrenaming invalid file to: defaults-backup.xml and creating "
                                                      "new blank XML document",
                            "contents of invalid xml with string length: 0\n",
                            "error creating backup file: " + target.string()));
}

TEST_F(LocalFileConfigStoreTest, RefusesAFileNameWithoutAnExtension) {
    EXPECT_THROW(plain("settings"), std::out_of_range);
}

TEST_F(LocalFileConfigStoreTest, ReadsTheUsersFile) {
    ASSERT_TRUE(xml_test::writeProtected(main, document("main")));
    ASSERT_TRUE(xml_test::writeProtected(backup, document("backup")));
    LocalFileConfigStore store(userName, 20, false);
    EXPECT_EQ(valueOf(store, L"key"), L"main");
    EXPECT_THAT(log.getTexts(loggerName), IsEmpty());
}

TEST_F(LocalFileConfigStoreTest, FallsBackToTheBackupWithoutALine) {
    ASSERT_TRUE(xml_test::writeProtected(backup, document("backup")));
    testing_host::writeFile(main, "garbage");
    LocalFileConfigStore store(userName, 20, false);
    EXPECT_EQ(valueOf(store, L"key"), L"backup");
    EXPECT_THAT(log.getTexts(loggerName), IsEmpty());
    EXPECT_EQ(testing_host::readFile(main), "garbage");
}

TEST_F(LocalFileConfigStoreTest, FallsBackToTheBackupIfTheMainFileIsMissing) {
    ASSERT_TRUE(xml_test::writeProtected(backup, document("backup")));
    LocalFileConfigStore store(userName, 20, false);
    EXPECT_EQ(valueOf(store, L"key"), L"backup");
}

TEST_F(LocalFileConfigStoreTest, IsEmptyIfBothFilesAreUnreadable) {
    testing_host::writeFile(main, "garbage");
    testing_host::writeFile(backup, "more garbage");
    LocalFileConfigStore store(userName, 20, false);
    EXPECT_THAT(store.getKeys(), IsEmpty());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre("Failed to read config file " + backup));
    EXPECT_EQ(testing_host::readFile(main), "garbage");
    EXPECT_EQ(testing_host::readFile(backup), "more garbage");
}

TEST_F(LocalFileConfigStoreTest, LogsAnErrorIfBothFilesAreMissing) {
    LocalFileConfigStore store(userName, 20, false);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre("Failed to read config file " + backup));
}

TEST_F(LocalFileConfigStoreTest, HasNoBackupUnderAnotherName) {
    ASSERT_TRUE(xml_test::writeProtected(backup, document("backup")));
    testing_host::writeFile(main, "garbage");
    LocalFileConfigStore store("localfileconfigstore", 20, false);
    EXPECT_THAT(store.getKeys(), IsEmpty());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre("Failed to read config file " + main));
    EXPECT_EQ(testing_host::readFile(main), "garbage");
}

TEST_F(LocalFileConfigStoreTest, IgnoresTheBackupIfTheMainFileContainsMalformedXml) {
    ASSERT_TRUE(xml_test::writeProtected(main, "<r>"));
    ASSERT_TRUE(xml_test::writeProtected(backup, document("backup")));
    const std::string before = testing_host::readFile(main);
    const std::string backupBefore = testing_host::readFile(backup);
    LocalFileConfigStore store(userName, 20, false);
    EXPECT_THAT(store.getKeys(), IsEmpty());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre(syntaxLine));
    EXPECT_EQ(testing_host::readFile(main), before);
    EXPECT_EQ(testing_host::readFile(backup), backupBefore);
}

TEST_F(LocalFileConfigStoreTest, IsEmptyAndLogsALineIfTheUsersFileIsHostile) {
    for (const std::string& xml : xml_test::hostileTexts()) {
        SCOPED_TRACE(xml.substr(0, 60));
        ASSERT_TRUE(xml_test::writeProtected(main, xml));
        const testing_host::LogRecorder lines;
        LocalFileConfigStore store(userName, 20, false);
        EXPECT_THAT(store.getKeys(), IsEmpty());
        EXPECT_THAT(lines.getTexts(loggerName), ElementsAre(syntaxLine));
    }
}

TEST_F(LocalFileConfigStoreTest, ReadsNoOtherFileForADocument) {
    const std::string secret = (profile.root() / "secret").string();
    testing_host::writeFile(secret, "<userConfig name='secret' value='v'/>");
    const std::string text = "<!DOCTYPE r SYSTEM 'http://127.0.0.1:9/x.dtd' [<!ENTITY e SYSTEM '" + secret +
                             "'>]><r>&e;<userConfig name='k' value='v'/></r>";
    ASSERT_TRUE(xml_test::writeProtected(main, text));
    const std::string defaults = (profile.resources() / "defaults.xml").string();
    testing_host::writeFile(defaults, text);
    const xml_test::LoadCounter loads(defaults);
    EXPECT_THAT(LocalFileConfigStore(userName, 20, false).getKeys(), ElementsAre(L"k"));
    EXPECT_THAT(plain("defaults.xml").getKeys(), ElementsAre(L"k"));
    EXPECT_EQ(loads.count(), 0);
}

TEST_F(LocalFileConfigStoreTest, ReadsTheFilesOfTheFirstRelease) {
    const fs::path release = LUMORA_FIRST_RELEASE;
    fs::copy(release / "keys", profile.data() / "keys");
    fs::copy(release / "lumoraLocalConfig.dat", main);
    LocalFileConfigStore user(userName, 20, false);
    EXPECT_THAT(user.getKeys(), ElementsAre(L"connectionpassword", L"servicesdomain"));
    EXPECT_EQ(valueOf(user, L"ServicesDomain"), L"example.com");
    EXPECT_EQ(valueOf(user, L"ConnectionPassword"), L"not a real one: \u00E4\u20AC");
    ZelUnified::CacheConfigStore copy("UrlProvisioningConfigStore", 499,
                                      (release / "cachedUrlProvisioningConfigStore.dat").string());
    EXPECT_EQ(valueOf(copy, L"ServicesDomain"), L"example.com");
}

TEST_F(LocalFileConfigStoreTest, InsertsTheBackupSuffixAtTheFirstPointOfAProtectedFilesName) {
    const std::string folder = profile.config().string();
    ASSERT_TRUE(xml_test::writeProtected(folder + "/settings_backup.b.xml", document("backup")));
    LocalFileConfigStore store(userName, 20, folder, "settings.b.xml", true, false, true);
    EXPECT_EQ(valueOf(store, L"key"), L"backup");
}

TEST_F(LocalFileConfigStoreTest, FipsModeForcesTheKeyOnAHitOnly) {
    const xml_test::FipsMode fips(true);
    LocalFileConfigStore store(userName, 20, false);
    EXPECT_EQ(valueOf(store, L"Telephony_P2P_Enabled"), L"(none)");
    store.storeValue(L"telephony_p2p_enabled", L"true");
    EXPECT_EQ(valueOf(store, L"Telephony_P2P_Enabled"), L"false");
}

TEST_F(LocalFileConfigStoreTest, ReturnsTheCertificateSwitch) {
    LocalFileConfigStore store(userName, 20, false);
    store.storeValue(L"CertificateValidationEnabled", L"false");
    EXPECT_EQ(valueOf(store, L"certificatevalidationenabled"), L"false");
}
