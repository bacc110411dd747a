#include <zel/FipsUtils.h>

#include <fstream>

namespace {

using zel::common::FipsUtils;

class FipsUtilsTest : public testing::Test {
protected:
    void TearDown() override { FipsUtils::overrideFipsMode(std::nullopt); }
};

TEST_F(FipsUtilsTest, ReturnsTheModeOfTheMachine) {
    char first = '0';
    std::ifstream("/proc/sys/crypto/fips_enabled").get(first);
    EXPECT_EQ(FipsUtils::isFipsEnabled(), first == '1');
    EXPECT_EQ(FipsUtils::isFipsEnabled(), first == '1');
}

TEST_F(FipsUtilsTest, AnOverrideIsInEffectUntilItIsReset) {
    const bool machine = FipsUtils::isFipsEnabled();
    FipsUtils::overrideFipsMode(!machine);
    EXPECT_EQ(FipsUtils::isFipsEnabled(), !machine);
    FipsUtils::overrideFipsMode(std::nullopt);
    EXPECT_EQ(FipsUtils::isFipsEnabled(), machine);
}

TEST_F(FipsUtilsTest, AnOverrideBeforeTheFirstQueryIsInEffect) {
    FipsUtils::overrideFipsMode(true);
    EXPECT_TRUE(FipsUtils::isFipsEnabled());
}

} // namespace
