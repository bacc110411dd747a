#include "SettingsOnDisk.h"

#include <gtest/gtest.h>

namespace lumora_config {

TEST(SettingsOnDisk, KeepWhatXmlCanRepresent) {
    const std::wstring value = L" a\t\n\r\u00e4\u6f22\U0001F600\uFFFD<&>\"";
    EXPECT_EQ(asDocumentsKeepIt(value), value);
}

TEST(SettingsOnDisk, KeepAReplacementForEveryOtherCharacter) {
    EXPECT_EQ(asDocumentsKeepIt(std::wstring(L"a\0b", 3)), L"a\uFFFDb");
    EXPECT_EQ(asDocumentsKeepIt(L"\x01\x1F\uFFFE\uFFFF"), L"\uFFFD\uFFFD\uFFFD\uFFFD");
}

} // namespace lumora_config
