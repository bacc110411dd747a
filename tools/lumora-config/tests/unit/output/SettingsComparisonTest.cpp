#include "output/SettingsComparison.h"

#include <gtest/gtest.h>

namespace lumora_config {

namespace {

DumpedSetting makeSetting(const std::wstring& key, const std::wstring& value, const std::wstring& store = L"S") {
    return {key, value, store, false, false};
}

} // namespace

TEST(SettingsComparison, ListsChangedAndMissingKeysInKeyOrder) {
    const SettingsDump left{
        "user", {makeSetting(L"c", L"1"), makeSetting(L"A", L"1"), makeSetting(L"same", L"1")}, "x"};
    const SettingsDump right{
        "user", {makeSetting(L"b", L"1"), makeSetting(L"a", L"2"), makeSetting(L"Same", L"1")}, ""};
    const auto comparison = compareSettings(left, right, Compared::Values);
    EXPECT_EQ(comparison.left, "x");
    EXPECT_EQ(comparison.right, "user");
    EXPECT_EQ(comparison.equal, 1U);
    ASSERT_EQ(comparison.differences.size(), 3U);
    EXPECT_EQ(comparison.differences[0].left->value, L"1");
    EXPECT_EQ(comparison.differences[0].right->value, L"2");
    EXPECT_FALSE(comparison.differences[1].left);
    EXPECT_FALSE(comparison.differences[2].right);
}

TEST(SettingsComparison, ComparesStoresOnlyOnRequest) {
    const SettingsDump left{"user", {makeSetting(L"a", L"1", L"S")}, ""};
    const SettingsDump right{"user", {makeSetting(L"a", L"1", L"T")}, ""};
    EXPECT_TRUE(compareSettings(left, right, Compared::Values).differences.empty());
    EXPECT_EQ(compareSettings(left, right, Compared::ValuesAndStores).differences.size(), 1U);
}

TEST(SettingsComparison, CountsAHiddenValueAsUnknown) {
    const SettingsDump left{"user", {{L"a", L"", L"S", true, true}}, ""};
    const SettingsDump right{"user", {makeSetting(L"a", L"1")}, ""};
    const auto comparison = compareSettings(left, right, Compared::Values);
    EXPECT_EQ(comparison.unknown, 1U);
    EXPECT_TRUE(comparison.differences.empty());
}

TEST(SettingsComparison, HidesBothValuesIfOneSideIsSensitive) {
    const SettingsDump left{"user", {{L"a", L"s3cret", L"S", false, false}}, ""};
    const SettingsDump right{"user", {{L"a", L"other", L"S", true, false}}, ""};
    auto comparison = compareSettings(left, right, Compared::Values);
    hideSecrets(comparison);
    ASSERT_EQ(comparison.differences.size(), 1U);
    EXPECT_EQ(comparison.differences[0].left->value, L"");
    EXPECT_TRUE(comparison.differences[0].left->hidden);
    EXPECT_EQ(comparison.differences[0].right->value, L"");
}

} // namespace lumora_config
