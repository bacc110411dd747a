#include "PlantedSecret.h"
#include "SessionProcess.h"
#include "secure/SecureString.h"

#include <zel/EncryptFileUtils.h>

#include <CacheConfigStore.h>
#include <FaultInjectingFileLayer.h>
#include <LocalFileConfigStore.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

using memory_test::SessionProcess;
using testing_host::FaultInjectingFileLayer;
using zel::storage::EncryptFileUtils;
using zel::storage::FileCategoryType::UserData;

namespace fs = std::filesystem;

namespace {

/// Searches all files on the disk for the secret.
class SecretTracesTest : public testing::Test {
protected:
    SecretTracesTest() {
        // The product must create it with restricted permissions itself.
        fs::remove(profile.config());
    }
    ~SecretTracesTest() override { EncryptFileUtils::overrideFileLayer(nullptr); }

    void persistSecret(const std::string& beside) const {
        const auto store = std::make_shared<ZelUnified::LocalFileConfigStore>("LocalFileConfigStore", 20, false);
        store->storeValue(L"ConnectionPassword", secret.text());
        store->storeValue(L"beside", std::wstring(beside.begin(), beside.end()));
        store->persistValues();
    }

    /// Leaves a temporary file for each step of a write.
    void dieInEachStep() const {
        for (std::size_t call = 1; call <= 60; ++call) {
            const auto layer = std::make_shared<FaultInjectingFileLayer>();
            layer->dieAt(call);
            EncryptFileUtils::overrideFileLayer(layer);
            persistSecret(std::to_string(call));
        }
        EncryptFileUtils::overrideFileLayer(nullptr);
    }

    void writeProtected(const std::string& name, const std::string& text) const {
        ASSERT_TRUE(
            EncryptFileUtils::writeDataToFile((profile.config() / name).string(), zel::SecureString(text), UserData));
    }

    void runSession(const std::string& scenario) {
        const SessionProcess session(profile, scenario);
        ASSERT_TRUE(session.waitUntilDone());
        errors += testing_host::readFile(profile.root() / "stderr");
    }

    void expectNoSecretIn(const std::string& bytes, const std::string& where) const {
        for (const auto& piece : secret.pieces()) {
            EXPECT_EQ(memory_test::countNarrow(bytes, piece), 0U) << where;
            EXPECT_EQ(memory_test::countWide(bytes, piece), 0U) << where;
        }
    }

    testing_host::TemporaryProfile profile;
    const memory_test::PlantedSecret secret;
    std::string errors;
};

TEST_F(SecretTracesTest, LogsErrorsTemporaryFilesAndBackupsContainNoSecret) {
    const std::string narrow(secret.text().begin(), secret.text().end());
    persistSecret("first");
    dieInEachStep();
    runSession("user");
    runSession("service");
    // The parser quotes a document that is not well-formed.
    writeProtected("lumoraLocalConfig.dat", "<Lumora><userConfig name=\"secret\" value=\"" + narrow + "\"></oops>");
    runSession("user");
    fs::create_directory(profile.config() / "Cache");
    writeProtected("Cache/cachedPresence.dat", "<a><b><connectionpassword>" + narrow + "</oops></b></a>");
    runSession("Presence");
    testing_host::writeFile(profile.config() / "lumoraLocalConfig_backup.dat", "rubbish");
    runSession("user");

    std::size_t temporaryFiles = 0;
    std::size_t protectedFiles = 0;
    for (const auto& entry : fs::recursive_directory_iterator(profile.root())) {
        if (!entry.is_regular_file()) {
            continue;
        }
        const std::string name = entry.path().filename().string();
        expectNoSecretIn(testing_host::readFile(entry.path()), name);
        temporaryFiles += name.ends_with(".tmp") ? 1 : 0;
        protectedFiles += name.ends_with(".dat") ? 1 : 0;
    }
    expectNoSecretIn(errors, "standard error");
    EXPECT_GT(temporaryFiles, 0U);
    EXPECT_EQ(protectedFiles, 3U);
    EXPECT_NE(errors.find("Error Invalid XML syntax detected"), std::string::npos);
    EXPECT_NE(testing_host::readFile(profile.state() / "session.log").find("Invalid XML"), std::string::npos);
}

TEST_F(SecretTracesTest, FilesAndFoldersAreAccessibleToTheirOwnerOnly) {
    persistSecret("first");
    dieInEachStep();
    runSession("user");
    runSession("Presence");
    for (const auto& folder : {profile.config(), profile.data() / "keys", profile.config() / "Cache"}) {
        EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all) << folder;
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.is_regular_file()) {
                EXPECT_EQ(entry.status().permissions(), fs::perms::owner_read | fs::perms::owner_write) << entry.path();
            }
        }
    }
    EXPECT_EQ(fs::status(profile.state() / "session.log").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

} // namespace
