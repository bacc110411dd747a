#include "featuresets/adapters/config/stores/StoreTable.h"

#include <zel/FipsUtils.h>

#include <BootstrapConfigStore.h>
#include <CacheConfigStore.h>
#include <InMemoryConfigStore.h>
#include <LocalFileConfigStore.h>
#include <MdmConfigStore.h>
#include <RegistryConfigStore.h>
#include <TemporaryProfile.h>
#include <XmlConfigStore.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace ZelUnified {
namespace {

/// A store of another service whose class is derived from one of the library's.
class DerivedStore final : public MdmConfigStore {
public:
    DerivedStore() : MdmConfigStore(std::string()) {}
};

class StoreTableTest : public testing::Test {
protected:
    ~StoreTableTest() override { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }

    /// Returns what a lookup in a table with that rule sets the value to; nullopt for a miss.
    static std::optional<std::wstring> lookUp(StoreTable::Rule rule, const ConfigMap& contents,
                                              const std::wstring& key) {
        StoreTable table(rule);
        table.replace(contents);
        std::wstring value = L"left over";
        const bool found = table.getValue(key, value);
        if (!found) {
            EXPECT_EQ(value, L"");
        }
        return found ? std::optional(value) : std::nullopt;
    }

    const testing_host::TemporaryProfile profile;
};

TEST_F(StoreTableTest, IsFoundInEachStoreOfTheLibraryAndInNoDerivedStore) {
    InMemoryConfigStore inMemory("InMemory", 1);
    LocalFileConfigStore localFile("LocalFile", 1, true);
    XmlConfigStore xml("Xml", 1, true, false, "", false);
    CacheConfigStore cache("Cache", 1, (profile.config() / "missing.dat").string());
    MdmConfigStore mdm{std::string()};
    RegistryConfigStore registry(nullptr, "Registry", 1, "Missing");
    BootstrapConfigStore bootstrap("Bootstrap", (profile.config() / "missing").string(), 1);
    for (ConfigStore* const store :
         {static_cast<ConfigStore*>(&inMemory), static_cast<ConfigStore*>(&localFile), static_cast<ConfigStore*>(&xml),
          static_cast<ConfigStore*>(&cache), static_cast<ConfigStore*>(&mdm), static_cast<ConfigStore*>(&registry),
          static_cast<ConfigStore*>(&bootstrap)}) {
        EXPECT_NE(StoreTable::find(*store), nullptr) << store->getName();
    }
    DerivedStore derived;
    EXPECT_EQ(StoreTable::find(derived), nullptr);
}

TEST_F(StoreTableTest, ContainsTheValuesOfItsStore) {
    InMemoryConfigStore store("InMemory", 1);
    store.storeValue(L"Key", L"value");
    const std::wstring key = L"KEY";
    std::wstring value;
    EXPECT_TRUE(StoreTable::find(store)->getValue(FoldedKey(key), value));
    EXPECT_EQ(value, L"value");
}

TEST_F(StoreTableTest, TrimsOnlyByItsRule) {
    const ConfigMap contents{{L"Key", L" value\t"}};
    EXPECT_EQ(lookUp(StoreTable::Rule::Trims, contents, L"KEY"), L"value");
    EXPECT_EQ(lookUp(StoreTable::Rule::AnswersAll, contents, L"KEY"), L" value\t");
    EXPECT_EQ(lookUp(StoreTable::Rule::WithholdsCertificateValidation, contents, L"KEY"), L" value\t");
}

TEST_F(StoreTableTest, HidesTheCertificateSwitchOnlyByItsRuleAndListsIt) {
    const ConfigMap contents{{L"CertificateValidationEnabled", L"true"}};
    constexpr auto key = L"CERTIFICATEVALIDATIONENABLED";
    EXPECT_EQ(lookUp(StoreTable::Rule::WithholdsCertificateValidation, contents, key), std::nullopt);
    EXPECT_EQ(lookUp(StoreTable::Rule::AnswersAll, contents, key), L"true");
    EXPECT_EQ(lookUp(StoreTable::Rule::Trims, contents, key), L"true");
    StoreTable table(StoreTable::Rule::WithholdsCertificateValidation);
    table.replace(contents);
    EXPECT_EQ(table.getKeys().size(), 1U);
    EXPECT_EQ(table.listKeys().size(), 1U);
}

TEST_F(StoreTableTest, FipsModeForcesAHitByEachRuleAndAMissOnlyWithTheTrimmingRule) {
    constexpr auto key = L"TELEPHONY_P2P_ENABLED";
    zel::common::FipsUtils::overrideFipsMode(true);
    const ConfigMap contents{{L"Telephony_P2P_Enabled", L"true"}};
    EXPECT_EQ(lookUp(StoreTable::Rule::AnswersAll, contents, key), L"false");
    EXPECT_EQ(lookUp(StoreTable::Rule::WithholdsCertificateValidation, contents, key), L"false");
    EXPECT_EQ(lookUp(StoreTable::Rule::Trims, contents, key), L"false");
    EXPECT_EQ(lookUp(StoreTable::Rule::AnswersAll, {}, key), std::nullopt);
    EXPECT_EQ(lookUp(StoreTable::Rule::WithholdsCertificateValidation, {}, key), std::nullopt);
    StoreTable trimming(StoreTable::Rule::Trims);
    std::wstring value;
    EXPECT_FALSE(trimming.getValue(key, value));
    EXPECT_EQ(value, L"false");
}

TEST_F(StoreTableTest, KeyAndValueMayBeOneString) {
    for (const auto rule :
         {StoreTable::Rule::AnswersAll, StoreTable::Rule::WithholdsCertificateValidation, StoreTable::Rule::Trims}) {
        StoreTable table(rule);
        table.storeValue(L"Key", L"a value that is longer than the key");
        std::wstring text = L"Key";
        EXPECT_TRUE(table.getValue(text, text));
        EXPECT_EQ(text, L"a value that is longer than the key");
    }
}

} // namespace
} // namespace ZelUnified
