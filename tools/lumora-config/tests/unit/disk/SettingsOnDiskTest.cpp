#include "disk/SettingsOnDisk.h"

#include <gtest/gtest.h>

namespace lumora_config {

TEST(SettingsOnDisk, KeepCharactersThatXmlCanRepresent) {
    const std::wstring value = L" a\t\n\r\u00e4\u6f22\U0001F600\uFFFD<&>\"";
    EXPECT_EQ(toStoredText(value), value);
}

TEST(SettingsOnDisk, ReplaceEveryOtherCharacter) {
    EXPECT_EQ(toStoredText(std::wstring(L"a\0b", 3)), L"a\uFFFDb");
    EXPECT_EQ(toStoredText(L"\x01\x1F\uFFFE\uFFFF"), L"\uFFFD\uFFFD\uFFFD\uFFFD");
}

} // namespace lumora_config
