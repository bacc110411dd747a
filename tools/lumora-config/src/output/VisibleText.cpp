#include "VisibleText.h"

namespace lumora_config {

namespace {

constexpr char32_t deleteCharacter = 0x7f;

bool isControl(char32_t c) {
    return (c < 0x20 && c != U'\n' && c != U'\t') || c == deleteCharacter;
}

/// Bidirectional marks, which could make a value look like another one.
bool turnsDirection(char32_t c) {
    return c == 0x200e || c == 0x200f || (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069);
}

wchar_t signOf(char32_t control) {
    constexpr char32_t firstSign = 0x2400;
    constexpr char32_t deleteSign = 0x2421;
    return static_cast<wchar_t>(control == deleteCharacter ? deleteSign : firstSign + control);
}

std::wstring nameOf(char32_t c) {
    constexpr std::wstring_view digits = L"0123456789ABCDEF";
    std::wstring name = L"[U+";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        name += digits[(c >> shift) & 0xfU];
    }
    return name + L']';
}

} // namespace

std::wstring makeVisible(std::wstring_view text) {
    std::wstring visible;
    visible.reserve(text.size());
    for (const wchar_t unit : text) {
        const auto c = static_cast<char32_t>(unit);
        if (isControl(c)) {
            visible += signOf(c);
        } else if (turnsDirection(c)) {
            visible += nameOf(c);
        } else {
            visible += unit;
        }
    }
    return visible;
}

} // namespace lumora_config
