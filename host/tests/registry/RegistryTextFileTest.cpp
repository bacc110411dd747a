#include "RegistryTextFixture.h"

namespace {

using namespace registry_text_test;
using testing::IsEmpty;
using testing::SizeIs;

TEST(RegistryTextFile, FormattedSectionsParseToTheSameSections) {
    const auto text = parse(header + "[-HKCU\\Old]\r\n[HKCU\\K]\r\n@=\"d \\\"x\\\" C:\\\\y\"\r\n\"line\"=\"a\r\nb\"\r\n"
                                     "\"n\"=dword:0000000a\r\n\"x\"=-\r\n\"h\"=hex:01,ff\r\n\"e\"=hex(2):25,00\r\n"
                                     "\"none\"=hex(0):\r\n\"odd\"=hex(1):41\r\n\"short\"=hex(4):01\r\n"
                                     "[HKCU]\r\n\"r\"=\"1\"\r\n");
    ASSERT_THAT(text.refusals, IsEmpty());
    const auto again = parse(formatRegistryText(text.sections));
    EXPECT_THAT(again.refusals, IsEmpty());
    ASSERT_EQ(again.sections.size(), text.sections.size());
    for (std::size_t i = 0; i < again.sections.size(); ++i) {
        EXPECT_EQ(again.sections[i].path, text.sections[i].path);
        EXPECT_EQ(again.sections[i].deletion, text.sections[i].deletion);
        ASSERT_EQ(again.sections[i].entries.size(), text.sections[i].entries.size());
        for (std::size_t j = 0; j < again.sections[i].entries.size(); ++j) {
            EXPECT_EQ(again.sections[i].entries[j].value, text.sections[i].entries[j].value);
            EXPECT_EQ(again.sections[i].entries[j].deletion, text.sections[i].entries[j].deletion);
        }
    }
}

TEST(RegistryTextFile, FormattingWritesTheCustomarySpellingOfEachType) {
    const auto text = parse(header + "[HKCU\\K]\r\n\"n\"=dword:a\r\n\"t\"=\"x\"\r\n\"gone\"=-\r\n");
    EXPECT_EQ(formatRegistryText(text.sections), "Windows Registry Editor Version 5.00\r\n"
                                                 "\r\n"
                                                 "[HKEY_CURRENT_USER\\K]\r\n"
                                                 "\"n\"=dword:0000000a\r\n"
                                                 "\"t\"=\"x\"\r\n"
                                                 "\"gone\"=-\r\n");
}

TEST(RegistryTextFile, RemovingASectionKeepsEveryOtherByte) {
    const std::string first = "[HKCU\\A]\n\"a\"=\"\xFF broken utf-8\"\r\n; comment\n";
    const std::string second = "[HKCU\\B]\r\n\"b\"=\"x\r\n[y]\"\r\n\r\n";
    const std::string third = "[HKCU\\C]\n\"c\"=dword:1";
    const auto bytes = header + first + second + third;
    const auto text = parse(bytes);
    ASSERT_THAT(text.sections, SizeIs(3));
    EXPECT_EQ(cutRegistryText(bytes, {}), bytes);
    EXPECT_EQ(cutRegistryText(bytes, std::span(text.sections).subspan(1, 1)), header + first + third);
    EXPECT_EQ(cutRegistryText(bytes, text.sections), header);
}

TEST(RegistryTextFile, RemovingASectionKeepsUtf16AndTheByteOrderMark) {
    const std::wstring start = L"Windows Registry Editor Version 5.00\r\n";
    const std::wstring end = L"[HKCU\\B]\r\n\"b\"=\"\u00fc\"\r\n";
    const auto bytes = toUtf16File(start + L"[HKCU\\A]\r\n\"a\"=\"1\"\r\n" + end);
    const auto text = parse(bytes);
    ASSERT_THAT(text.sections, SizeIs(2));
    EXPECT_EQ(cutRegistryText(bytes, std::span(text.sections).first(1)), toUtf16File(start + end));
}

TEST(RegistryTextFile, RemovingAllKeysBetweenMalformedLinesLeavesNoKey) {
    const auto bytes =
        header + "[X\r\n\"a\"=\"abc\r\n[HKCU\\x]\r\ndef\" rubbish\r\n[X\r\n\";\"=\"x\r\n[HKCU\\y]\r\n\"\r\n";
    EXPECT_THAT(parse(cutRegistryText(bytes, parse(bytes).sections)).sections, IsEmpty());
}

TEST(RegistryTextFile, AHundredThousandValuesAreParsed) {
    std::string lines = header + "[HKCU\\K]\r\n";
    for (int i = 0; i < 100000; ++i) {
        lines += "\"Key" + std::to_string(i) + "\"=\"value " + std::to_string(i) + "\"\r\n";
    }
    const auto text = parse(lines);
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(1));
    const auto& entries = text.sections[0].entries;
    ASSERT_EQ(entries.size(), 100000U);
    EXPECT_EQ(entries[99999].value, makeTextValue(L"Key99999", L"value 99999"));
}

} // namespace
