#include "stores/BootstrapKeyFinder.h"

#include <gmock/gmock.h>

namespace lumora_config {

TEST(BootstrapKeyFinder, TheLastLineOfAKeyWins) {
    const auto places = findBootstrapKeys("\xEF\xBB\xBF"
                                          "A: 1\r\n# B: 1\r\n\r\n C : a:b\r\na:2\nD",
                                          "boot");
    ASSERT_EQ(places.size(), 3U);
    EXPECT_EQ(places.at(L"A").line, 5U);
    EXPECT_EQ(places.at(L"c").line, 4U);
    EXPECT_EQ(places.at(L"D").line, 6U);
    EXPECT_EQ(places.at(L"D").file, "boot");
    EXPECT_TRUE(findBootstrapKeys("", "boot").empty());
}

} // namespace lumora_config
