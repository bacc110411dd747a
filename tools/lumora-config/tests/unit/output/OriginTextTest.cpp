#include "output/OriginText.h"

#include "output/TimeText.h"

#include <gtest/gtest.h>

namespace lumora_config {

TEST(OriginText, ContainsTheKnownParts) {
    EXPECT_EQ(describe(Origin{}), "");
    EXPECT_EQ(describe(Origin{"f", 0, "", ""}), "f");
    EXPECT_EQ(describe(Origin{"f", 7, "", ""}), "f:7");
    EXPECT_EQ(describe(Origin{"", 0, "set", ""}), "set");
    EXPECT_EQ(describe(Origin{"", 0, "set", "noon"}), "set at noon");
    EXPECT_EQ(describe(Origin{"f", 7, "set", "noon"}), "set at noon, f:7");
}

TEST(TimeText, IsUtcToTheSecond) {
    using namespace std::chrono;
    EXPECT_EQ(formatTime(sys_days{year{2021} / 3 / 4} + hours(5) + minutes(6) + milliseconds(7890)),
              "2021-03-04T05:06:07Z");
}

} // namespace lumora_config
