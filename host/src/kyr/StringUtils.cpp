#include "CodePoints.h"
#include "LetterCase.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace KyrCoreUtils {

namespace {

template <class Unit>
constexpr bool isBlank(Unit unit) {
    return unit == Unit{' '} || (unit >= Unit{'\t'} && unit <= Unit{'\r'});
}

/// Cheap test for the common case: each unit is one character and remains one in every conversion.
template <class Unit>
bool isAscii(std::basic_string_view<Unit> text) noexcept {
    std::uint32_t seen = 0;
    for (const Unit unit : text) {
        seen |= static_cast<std::uint32_t>(unit);
    }
    return seen < 0x80;
}

template <class From, class To, class Map>
void mapUnits(std::basic_string_view<From> text, std::basic_string<To>& mapped, Map map) {
    mapped.resize(text.size());
    std::transform(text.begin(), text.end(), mapped.begin(), map);
}

template <class Unit>
std::basic_string_view<Unit> withoutLeadingBlanks(std::basic_string_view<Unit> text) noexcept {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

template <class Unit>
std::basic_string_view<Unit> withoutBlanks(std::basic_string_view<Unit> text) noexcept {
    text = withoutLeadingBlanks(text);
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

template <class Unit>
void splitInto(std::basic_string_view<Unit> text, std::vector<std::basic_string<Unit>>& pieces,
               std::basic_string_view<Unit> separator) {
    std::vector<std::basic_string<Unit>> found;
    if (separator.empty() && !text.empty()) {
        found.emplace_back(text);
    } else if (!text.empty()) {
        std::size_t begin = 0;
        for (auto end = text.find(separator); end != text.npos; end = text.find(separator, begin)) {
            found.emplace_back(text.substr(begin, end - begin));
            begin = end + separator.size();
        }
        found.emplace_back(text.substr(begin));
    }
    // Swaps at the end because the text may be a view of an old piece.
    pieces.swap(found);
}

/// Returns the length of the common ASCII prefix, in whole blocks. Neighbours in a sorted order have long common
/// prefixes.
std::size_t equalAsciiBlocks(std::wstring_view a, std::wstring_view b, std::size_t shared) noexcept {
    constexpr std::size_t block = 4;
    std::size_t at = 0;
    for (; at + block <= shared; at += block) {
        char32_t differing = 0;
        char32_t seen = 0;
        for (std::size_t i = at; i < at + block; ++i) {
            differing |= codepoints::unitValue(a[i]) ^ codepoints::unitValue(b[i]);
            seen |= codepoints::unitValue(a[i]);
        }
        if (differing != 0 || seen >= 0x80) {
            break;
        }
    }
    return at;
}

bool startsWithIgnoringCase(lettercase::WideCursor text, lettercase::WideCursor start) noexcept {
    while (!start.atEnd()) {
        if (text.atEnd() || text.next() != start.next()) {
            return false;
        }
    }
    return true;
}

} // namespace

std::string toString(std::wstring_view text) {
    if (!isAscii(text)) {
        return codepoints::wideToUtf8(text);
    }
    std::string narrow;
    mapUnits(text, narrow, [](wchar_t unit) { return static_cast<char>(unit); });
    return narrow;
}

std::wstring toWideString(std::string_view text) {
    std::wstring wide;
    toWideString(text, wide);
    return wide;
}

void toWideString(std::string_view text, std::wstring& wide) {
    if (!isAscii(text)) { // tested first: discarded output could contain a secret
        wide = codepoints::utf8ToWide<wchar_t>(text);
        return;
    }
    mapUnits(text, wide, [](char unit) { return static_cast<wchar_t>(unit); });
}

std::wstring toWideString(int number) {
    return std::to_wstring(number);
}

std::wstring toWideString(unsigned int number) {
    return std::to_wstring(number);
}

std::wstring toLowercase(std::wstring_view text) {
    std::wstring result(text);
    makeLowercase(result);
    return result;
}

void makeLowercase(std::wstring& text) {
    if (isAscii(std::wstring_view(text))) {
        for (wchar_t& unit : text) {
            unit = static_cast<wchar_t>(lettercase::toLower(codepoints::unitValue(unit)));
        }
        return;
    }
    std::wstring lower;
    lower.reserve(text.size());
    for (lettercase::WideCursor cursor(text); !cursor.atEnd();) {
        codepoints::appendWide(lower, cursor.next());
    }
    text.swap(lower);
}

std::string toLowercase(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const codepoints::Decoded decoded = codepoints::decodeUtf8(text, at);
        if (decoded.wellFormed) {
            codepoints::appendUtf8(result, lettercase::toLower(decoded.value));
        } else {
            result.append(text.substr(at, decoded.length));
        }
        at += decoded.length;
    }
    return result;
}

int caseInsensitiveStringCompare(std::wstring_view a, std::wstring_view b) noexcept {
    // While both texts are ASCII, no unit needs decoding.
    const std::size_t shared = std::min(a.size(), b.size());
    for (std::size_t at = equalAsciiBlocks(a, b, shared); at < shared; ++at) {
        const char32_t left = codepoints::unitValue(a[at]);
        const char32_t right = codepoints::unitValue(b[at]);
        if (left == right && left < 0x80) {
            continue;
        }
        if ((left | right) >= 0x80) {
            return lettercase::compare(lettercase::WideCursor(a.substr(at)), lettercase::WideCursor(b.substr(at)));
        }
        const char32_t lowerLeft = lettercase::toLower(left);
        const char32_t lowerRight = lettercase::toLower(right);
        if (lowerLeft != lowerRight) {
            return lowerLeft < lowerRight ? -1 : 1;
        }
    }
    return static_cast<int>(a.size() > shared) - static_cast<int>(b.size() > shared);
}

bool caseInsensitiveStringEquals(std::wstring_view a, std::wstring_view b) noexcept {
    return caseInsensitiveStringCompare(a, b) == 0;
}

bool caseInsensitiveStringEquals(std::string_view a, std::string_view b) noexcept {
    return lettercase::compare(lettercase::Utf8Cursor(a), lettercase::Utf8Cursor(b)) == 0;
}

std::ptrdiff_t caseInsensitiveFind(std::wstring_view text, std::wstring_view needle) {
    const lettercase::WideCursor wanted(needle);
    lettercase::WideCursor cursor(text);
    for (;;) {
        if (startsWithIgnoringCase(cursor, wanted)) {
            return static_cast<std::ptrdiff_t>(cursor.position());
        }
        if (cursor.atEnd()) {
            return -1;
        }
        cursor.next();
    }
}

bool matchesWildcards(std::wstring_view text, std::wstring_view pattern) {
    const auto name = toLowercase(text);
    const auto glob = toLowercase(pattern);
    std::size_t at = 0;
    std::size_t next = 0;
    std::size_t star = std::wstring::npos; // the last "*" of the pattern so far
    std::size_t starAt = 0;                // the start of the text after that "*"
    while (at < name.size()) {
        if (next < glob.size() && glob[next] == L'*') {
            star = next++;
            starAt = at;
        } else if (next < glob.size() && (glob[next] == L'?' || glob[next] == name[at])) {
            ++next;
            ++at;
        } else if (star != std::wstring::npos) { // the last "*" matches one more character; the others need no retry
            next = star + 1;
            at = ++starAt;
        } else {
            return false;
        }
    }
    return glob.find_first_not_of(L'*', next) == std::wstring::npos;
}

std::string trim(std::string_view text) {
    return std::string(withoutBlanks(text));
}

std::wstring trim(std::wstring_view text) {
    return std::wstring(withoutBlanks(text));
}

std::string_view trimmedView(std::string_view text) noexcept {
    return withoutBlanks(text);
}

std::string trimleft(std::string_view text) {
    return std::string(withoutLeadingBlanks(text));
}

std::wstring trimleft(std::wstring_view text) {
    return std::wstring(withoutLeadingBlanks(text));
}

void split(std::string_view text, std::vector<std::string>& pieces, std::string_view separator) {
    splitInto(text, pieces, separator);
}

void split(std::wstring_view text, std::vector<std::wstring>& pieces, std::wstring_view separator) {
    splitInto(text, pieces, separator);
}

bool toBool(std::string_view text) noexcept {
    const std::string_view word = withoutBlanks(text);
    for (const std::string_view yes : {"true", "1", "yes", "on"}) {
        if (caseInsensitiveStringEquals(word, yes)) {
            return true;
        }
    }
    return false;
}

bool toBool(std::wstring_view text) noexcept {
    const std::wstring_view word = withoutBlanks(text);
    for (const std::wstring_view yes : {L"true", L"1", L"yes", L"on"}) {
        if (caseInsensitiveStringEquals(word, yes)) {
            return true;
        }
    }
    return false;
}

int toInt(std::wstring_view text, int fallback) noexcept {
    std::wstring_view digits = withoutBlanks(text);
    const bool negative = digits.starts_with(L'-');
    if (negative || digits.starts_with(L'+')) {
        digits.remove_prefix(1);
    }
    if (digits.empty()) {
        return fallback;
    }
    const std::int64_t limit = std::int64_t{std::numeric_limits<int>::max()} + (negative ? 1 : 0);
    std::int64_t value = 0;
    for (const wchar_t digit : digits) {
        if (digit < L'0' || digit > L'9') {
            return fallback;
        }
        value = value * 10 + (digit - L'0');
        if (value > limit) {
            return fallback;
        }
    }
    return static_cast<int>(negative ? -value : value);
}

} // namespace KyrCoreUtils
