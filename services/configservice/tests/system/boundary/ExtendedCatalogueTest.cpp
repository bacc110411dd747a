#include "KeysPage.h"
#include "featuresets/adapters/config/chain/RenamedKeys.h"
#include "featuresets/adapters/config/chain/UrlProvisioningData.h"

#include <ConfigCatalogue.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace ZelUnified::ConfigKeys {
namespace {

// The build appends one row to a copy of ConfigKeys.def and compiles this program with the copy:
// LUMORA_KEY(addedKey, L"Added_Key", .oldName = L"Added_Key_Before", .sensitive = atEnd, .provisioning = atEnd, ...)

TEST(ExtendedCatalogue, AddedKeyIsAConstantAndTheLastRow) {
    static_assert(addedKey == L"Added_Key");
    static_assert(std::get<std::wstring_view>(catalogue.back()) == addedKey);
    static_assert(keys.back().name == addedKey);
    EXPECT_EQ(findKey(L"added_key"), &keys.back());
    EXPECT_EQ(findKey(L"ADDED_KEY_BEFORE"), &keys.back());
}

TEST(ExtendedCatalogue, AddedKeyIsTheLastSensitiveKeyAndTheLastProvisioningKey) {
    static_assert(sensitiveKeys.back() == &keys.back());
    static_assert(provisioningKeys.back() == &keys.back());
}

TEST(ExtendedCatalogue, BothNamesOfTheAddedKeyAreSensitive) {
    const auto listed = listSensitiveNames();
    ASSERT_GE(listed.size(), 2U);
    EXPECT_EQ(listed[listed.size() - 2], L"Added_Key");
    EXPECT_EQ(listed.back(), L"Added_Key_Before");
}

TEST(ExtendedCatalogue, RenamedKeysContainsTheOldNameOfTheAddedKey) {
    const RenamedKeys renamed;
    const auto* const newName = renamed.findNewName(L"added_key_before");
    ASSERT_NE(newName, nullptr);
    EXPECT_EQ(*newName, L"Added_Key");
    const auto* const oldName = renamed.findOldName(L"added_key");
    ASSERT_NE(oldName, nullptr);
    EXPECT_EQ(*oldName, L"Added_Key_Before");
}

TEST(ExtendedCatalogue, ProvisioningUrlMaySetTheAddedKey) {
    EXPECT_EQ(parseUrlProvisioningData(L"lumora://x?Added_Key=true&Unknown_Key=1"),
              (ConfigMap{{L"Added_Key", L"true"}}));
}

TEST(ExtendedCatalogue, AddedKeyHasItsKind) {
    EXPECT_TRUE(permits(keys.back(), L"false"));
    EXPECT_FALSE(permits(keys.back(), L"0"));
}

TEST(ExtendedCatalogue, PageOfKeysContainsTheAddedKeyAndItsOldName) {
    const auto page = configservice_test::writeKeysPage();
    EXPECT_NE(page.find("| `Added_Key` | Is added. | yes | boolean: "), std::string::npos);
    EXPECT_NE(page.find("| `Added_Key_Before` | `Added_Key` |"), std::string::npos);
}

} // namespace
} // namespace ZelUnified::ConfigKeys
