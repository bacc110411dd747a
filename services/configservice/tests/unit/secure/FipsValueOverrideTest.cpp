#include "secure/FipsValueOverride.h"

#include <zel/FipsUtils.h>

#include <gtest/gtest.h>

#include <string>

namespace {

struct FipsValueOverride : testing::Test {
    ~FipsValueOverride() override { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }

    static std::wstring apply(bool fips, std::wstring_view key, std::wstring value) {
        zel::common::FipsUtils::overrideFipsMode(fips);
        zel::applyFipsValueOverride(key, value);
        return value;
    }
};

TEST_F(FipsValueOverride, TheKeyIsFalseIgnoringCaseAndItsValue) {
    EXPECT_EQ(apply(true, L"Telephony_P2P_Enabled", L"true"), L"false");
    EXPECT_EQ(apply(true, L"TELEPHONY_p2p_enabled", L""), L"false");
}

TEST_F(FipsValueOverride, OtherKeysKeepTheirValues) {
    EXPECT_EQ(apply(true, L"Telephony_P2P_Enabled2", L"true"), L"true");
    EXPECT_EQ(apply(true, L"", L"true"), L"true");
}

TEST_F(FipsValueOverride, NothingChangesOutsideFipsMode) {
    EXPECT_EQ(apply(false, L"Telephony_P2P_Enabled", L"true"), L"true");
}

} // namespace
