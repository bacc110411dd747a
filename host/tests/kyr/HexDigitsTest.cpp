#include "kyr/HexDigits.h"

#include <gtest/gtest.h>

#include <string>

TEST(HexDigits, AppendsTwoLowercaseDigitsForEachByte) {
    std::string text = "0x";
    for (const unsigned byte : {0x00U, 0x09U, 0x0AU, 0x9FU, 0xF0U, 0xFFU}) {
        KyrCoreUtils::appendHex(text, static_cast<unsigned char>(byte));
    }
    EXPECT_EQ(text, "0x00090a9ff0ff");
}
