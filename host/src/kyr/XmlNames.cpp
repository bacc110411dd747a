#include "CodePoints.h"

#include <kyr/XmlNames.h>

#include <algorithm>
#include <array>
#include <span>

namespace KyrCoreUtils {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

constexpr std::array<Range, 16> nameStartRanges{{{':', ':'},
                                                 {'A', 'Z'},
                                                 {'_', '_'},
                                                 {'a', 'z'},
                                                 {0xC0, 0xD6},
                                                 {0xD8, 0xF6},
                                                 {0xF8, 0x2FF},
                                                 {0x370, 0x37D},
                                                 {0x37F, 0x1FFF},
                                                 {0x200C, 0x200D},
                                                 {0x2070, 0x218F},
                                                 {0x2C00, 0x2FEF},
                                                 {0x3001, 0xD7FF},
                                                 {0xF900, 0xFDCF},
                                                 {0xFDF0, 0xFFFD},
                                                 {0x10000, 0xEFFFF}}};
/// Additional ranges allowed after the first character of a name.
constexpr std::array<Range, 5> furtherNameRanges{
    {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}}};
constexpr std::array<Range, 5> representableRanges{
    {{'\t', '\n'}, {'\r', '\r'}, {0x20, 0xD7FF}, {0xE000, 0xFFFD}, {0x10000, 0x10FFFF}}};

bool isIn(std::span<const Range> ranges, char32_t c) {
    return std::ranges::any_of(ranges, [c](const Range& range) { return c >= range.first && c <= range.last; });
}

/// Removes the first code point from a non-empty text and returns it. Returns a lone surrogate unchanged.
char32_t removeFirstCodePoint(std::wstring_view& text) {
    const auto decoded = codepoints::decodeWide(text, 0);
    text.remove_prefix(decoded.length);
    return decoded.value;
}

} // namespace

bool isXmlName(std::wstring_view text) {
    if (text.empty() || !isIn(nameStartRanges, removeFirstCodePoint(text))) {
        return false;
    }
    while (!text.empty()) {
        const auto c = removeFirstCodePoint(text);
        if (!isIn(nameStartRanges, c) && !isIn(furtherNameRanges, c)) {
            return false;
        }
    }
    return true;
}

std::optional<char32_t> findUnrepresentable(std::wstring_view text) {
    while (!text.empty()) {
        const auto c = removeFirstCodePoint(text);
        if (!isIn(representableRanges, c)) {
            return c;
        }
    }
    return std::nullopt;
}

} // namespace KyrCoreUtils
