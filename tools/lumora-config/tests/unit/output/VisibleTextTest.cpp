#include "output/VisibleText.h"

#include <gtest/gtest.h>

namespace lumora_config {

TEST(MakeVisible, ControlCharactersBecomeTheirSigns) {
    EXPECT_EQ(makeVisible(std::wstring_view(L"a\0\x1b\x7f", 4)), L"a\x2400\x241b\x2421");
}

TEST(MakeVisible, LineBreaksTabulatorsAndForeignLettersStay) {
    EXPECT_EQ(makeVisible(L"a\n\tß\x05d0"), L"a\n\tß\x05d0");
}

TEST(MakeVisible, MarksThatTurnTheDirectionAreNamed) {
    EXPECT_EQ(makeVisible(L"abc\x202egpj.exe"), L"abc[U+202E]gpj.exe");
    EXPECT_EQ(makeVisible(L"\x200f\x2066\x2069"), L"[U+200F][U+2066][U+2069]");
}

} // namespace lumora_config
