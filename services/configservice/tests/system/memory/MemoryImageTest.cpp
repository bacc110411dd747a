#include "PlantedSecret.h"
#include "SessionProcess.h"
#include "secure/SecureString.h"

#include <zel/EncryptFileUtils.h>

#include <CacheConfigStore.h>
#include <LocalFileConfigStore.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using memory_test::PlantedSecret;
using memory_test::SessionProcess;

namespace {

/// Searches the memory of a process that knows the secret from files only.
class MemoryImageTest : public testing::Test {
protected:
    /// Plants the secret among this number of other keys, on both sides of it.
    void plantInUserFile(int keys = 0) const {
        const auto store = std::make_shared<ZelUnified::LocalFileConfigStore>("LocalFileConfigStore", 20, false);
        store->storeValue(L"ConnectionPassword", secret.text());
        for (int number = 0; number < keys; ++number) {
            const auto text = std::to_wstring(number);
            store->storeValue((number % 2 == 0 ? L"a key " : L"z key ") + text, L"value " + text);
        }
        store->persistValues();
    }

    void plantInCachedCopy(const std::string& name) const {
        ZelUnified::ConfigMap values{{L"ConnectionPassword", secret.text()}};
        const auto path = profile.config() / "Cache" / ("cached" + name + ".dat");
        const ZelUnified::CacheConfigStore writer(name, 240, path.string(), values);
    }

    void expectCopies(const std::string& scenario, std::size_t copies) const {
        const SessionProcess session(profile, scenario);
        ASSERT_TRUE(session.waitUntilDone()) << testing_host::readFile(profile.root() / "stderr");
        const std::string image = session.readImage();
        ASSERT_FALSE(image.empty()) << testing_host::readFile(profile.root() / "debugger.log");
        for (const auto& piece : secret.pieces()) {
            EXPECT_EQ(memory_test::countWide(image, piece), copies) << "of " << piece;
            EXPECT_EQ(memory_test::countNarrow(image, piece), 0U) << "of " << piece;
        }
    }

    testing_host::TemporaryProfile profile;
    const PlantedSecret secret;
};

TEST_F(MemoryImageTest, AUserStoreHoldsASecretOnlyInItsTableAndThatOfTheLastWrite) {
    plantInUserFile();
    expectCopies("user", 2);
}

TEST_F(MemoryImageTest, AServiceHoldsASecretOnlyInItsStoresTablesAndItsRecord) {
    plantInUserFile();
    expectCopies("service", 3);
}

TEST_F(MemoryImageTest, ACachedCopyHoldsASecretOnlyInItsTable) {
    plantInCachedCopy("Presence");
    expectCopies("Presence", 1);
}

TEST_F(MemoryImageTest, AValueInSeveralXmlNodesLeavesNoPartInMemory) {
    plantInCachedCopy("Presence");
    const std::string narrow(secret.text().begin(), secret.text().end());
    const zel::SecureString document("<Lumora><CachedConfig><ConnectionPassword>" + narrow + "<![CDATA[" +
                                     std::string(500, 'x') + "]]></ConnectionPassword></CachedConfig></Lumora>");
    const auto path = profile.config() / "Cache" / "cachedPresence.dat";
    ASSERT_TRUE(zel::storage::EncryptFileUtils::writeDataToFile(path.string(), document,
                                                                zel::storage::FileCategoryType::UserData));
    expectCopies("Presence", 1);
}

TEST_F(MemoryImageTest, AUserStoreOfManyKeysHoldsASecretAsOftenAsOneOfFewKeys) {
    plantInUserFile(200);
    expectCopies("user", 2);
}

TEST_F(MemoryImageTest, ARemovedSecretIsInTheTableOfTheLastWriteUntilTheNextWrite) {
    for (const std::string way : {"removed, unwritten", "reset, unwritten"}) {
        SCOPED_TRACE(way);
        plantInUserFile(200);
        expectCopies(way, 1);
    }
}

TEST_F(MemoryImageTest, AUserStoreKeepsNoCopyOfARemovedSecret) {
    for (const std::string way : {"removed", "longer", "shorter", "reset", "released"}) {
        SCOPED_TRACE(way);
        plantInUserFile(200);
        expectCopies(way, 0);
    }
}

TEST_F(MemoryImageTest, AServiceKeepsNoCopyOfARemovedSecret) {
    for (const std::string way : {"service overwritten", "service reset"}) {
        SCOPED_TRACE(way);
        plantInUserFile(200);
        expectCopies(way, 0);
    }
}

} // namespace
