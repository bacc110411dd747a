#pragma once

#include "CodePoints.h"

#include <utf8proc.h>

namespace KyrCoreUtils::lettercase {

inline char32_t toLower(char32_t value) noexcept {
    if (value < 0x80) {
        return value >= 'A' && value <= 'Z' ? value + ('a' - 'A') : value;
    }
    return value > codepoints::last ? value
                                    : static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(value)));
}

/// Iterates over lower-case code points. An ill-formed unit is returned unchanged; its value equals no character.
class WideCursor {
public:
    explicit WideCursor(std::wstring_view wide) noexcept : text(wide) {}

    bool atEnd() const noexcept { return at == text.size(); }
    std::size_t position() const noexcept { return at; }

    char32_t next() noexcept {
        const codepoints::Decoded decoded = codepoints::decodeWide(text, at);
        at += decoded.length;
        return toLower(decoded.value);
    }

private:
    std::wstring_view text;
    std::size_t at = 0;
};

class Utf8Cursor {
public:
    explicit Utf8Cursor(std::string_view narrow) noexcept : text(narrow) {}

    bool atEnd() const noexcept { return at == text.size(); }

    char32_t next() noexcept {
        const codepoints::Decoded decoded = codepoints::decodeUtf8(text, at);
        if (!decoded.wellFormed) {
            ++at;
            return codepoints::last + 1 + decoded.value;
        }
        at += decoded.length;
        return toLower(decoded.value);
    }

private:
    std::string_view text;
    std::size_t at = 0;
};

/// Returns a negative number, zero or a positive number.
template <class Cursor>
int compare(Cursor a, Cursor b) noexcept {
    while (!a.atEnd() && !b.atEnd()) {
        const char32_t left = a.next();
        const char32_t right = b.next();
        if (left != right) {
            return left < right ? -1 : 1;
        }
    }
    return static_cast<int>(b.atEnd()) - static_cast<int>(a.atEnd());
}

} // namespace KyrCoreUtils::lettercase
