#include "RegistryTextFixture.h"

namespace {

using namespace registry_text_test;
using testing::IsEmpty;
using testing::SizeIs;

TEST(RegistryTextLines, AnExportInUtf16IsRead) {
    const auto text = parse(toUtf16File(L"Windows Registry Editor Version 5.00\r\n"
                                        L"\r\n"
                                        L"[HKEY_CURRENT_USER\\Software\\Policies\\\u00c4cme, Inc.]\r\n"
                                        L"\"Gr\u00fc\u00dfe\"=\"\U0001F600 \u4e2d\"\r\n"
                                        L"\"Count\"=dword:0000002a\r\n"
                                        L"\r\n"));
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(1));
    EXPECT_EQ(text.sections[0].path, L"Software\\Policies\\\u00c4cme, Inc.");
    EXPECT_EQ(text.sections[0].firstLine, 3U);
    EXPECT_EQ(text.sections[0].lastLine, 6U);
    ASSERT_THAT(text.sections[0].entries, SizeIs(2));
    EXPECT_EQ(text.sections[0].entries[0].value, makeTextValue(L"Gr\u00fc\u00dfe", L"\U0001F600 \u4e2d"));
    EXPECT_EQ(text.sections[0].entries[0].line, 4U);
    EXPECT_EQ(text.sections[0].entries[1].value, makeNumberValue(L"Count", 42));
}

TEST(RegistryTextLines, AByte0AInsideAUtf16CharacterIsNotALineFeed) {
    const auto text = parse(toUtf16File(L"Windows Registry Editor Version 5.00\n[HKCU\\K]\n\"a\"=\"\u010a\u0a00\"\n"));
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(1));
    EXPECT_EQ(text.sections[0].entries.at(0).value, makeTextValue(L"a", L"\u010a\u0a00"));
}

TEST(RegistryTextLines, ALoneSurrogateIsReplacedInUtf16) {
    auto bytes = toUtf16File(L"Windows Registry Editor Version 5.00\n[HKCU\\K]\n\"a\"=\"x\"\n");
    bytes.replace(bytes.rfind('x'), 2, "\x3D\xD8");
    const auto text = parse(bytes);
    ASSERT_THAT(text.sections, SizeIs(1));
    EXPECT_EQ(text.sections[0].entries.at(0).value, makeTextValue(L"a", L"\uFFFD"));
}

TEST(RegistryTextLines, Utf8IsReadWithAndWithoutAByteOrderMark) {
    const std::string lines =
        "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER\\K]\n\"\xC3\xBC\"=\"\xE4\xB8\xAD\"";
    for (const auto& bytes : {lines, "\xEF\xBB\xBF" + lines}) {
        const auto text = parse(bytes);
        EXPECT_THAT(text.refusals, IsEmpty());
        ASSERT_THAT(text.sections, SizeIs(1));
        EXPECT_EQ(text.sections[0].entries.at(0).value, makeTextValue(L"\u00fc", L"\u4e2d"));
    }
}

} // namespace
