#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

/// Conversions between code units and code points. Functions on wide units are templates, so that both widths are
/// tested on any platform.
namespace KyrCoreUtils::codepoints {

constexpr char32_t replacement = 0xFFFD;
constexpr char32_t last = 0x10FFFF;

/// The result of decoding at a position: one code point, or an ill-formed part of `length` units, of which `value` is
/// the first.
struct Decoded {
    char32_t value;
    std::size_t length;
    bool wellFormed;
};

constexpr bool isSurrogate(char32_t value) {
    return value >= 0xD800 && value <= 0xDFFF;
}
constexpr bool isHighSurrogate(char32_t value) {
    return value >= 0xD800 && value <= 0xDBFF;
}
constexpr bool isLowSurrogate(char32_t value) {
    return value >= 0xDC00 && value <= 0xDFFF;
}

template <class Unit>
constexpr char32_t unitValue(Unit unit) {
    using Bits = std::conditional_t<sizeof(Unit) == 2, std::uint16_t, std::uint32_t>;
    return static_cast<Bits>(unit);
}

template <class Unit>
constexpr Decoded decodeWide(std::basic_string_view<Unit> text, std::size_t at) {
    const char32_t unit = unitValue(text[at]);
    if constexpr (sizeof(Unit) == 2) {
        if (isHighSurrogate(unit) && at + 1 < text.size()) {
            const char32_t next = unitValue(text[at + 1]);
            if (isLowSurrogate(next)) {
                return {0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00), 2, true};
            }
        }
    }
    return {unit, 1, !isSurrogate(unit) && unit <= last};
}

/// Decodes at `at`. An ill-formed part extends as far as it could still begin a character, at least one byte.
constexpr Decoded decodeUtf8(std::string_view text, std::size_t at) {
    const auto byteAt = [&](std::size_t place) { return static_cast<unsigned char>(text[place]); };
    const unsigned char lead = byteAt(at);
    if (lead < 0x80) {
        return {lead, 1, true};
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return {lead, 1, false};
    }
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    // The range of the second byte excludes overlong forms, surrogates and values beyond the last code point.
    unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t value = static_cast<char32_t>(lead & (0x7F >> length));
    for (std::size_t read = 1; read < length; ++read) {
        if (at + read >= text.size() || byteAt(at + read) < low || byteAt(at + read) > high) {
            return {lead, read, false};
        }
        value = (value << 6) | (byteAt(at + read) & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return {value, length, true};
}

/// Appends `value`, which must be a scalar value; the caller replaces all others.
template <class Unit>
void appendWide(std::basic_string<Unit>& text, char32_t value) {
    if constexpr (sizeof(Unit) == 2) {
        if (value > 0xFFFF) {
            text.push_back(static_cast<Unit>(0xD800 + ((value - 0x10000) >> 10)));
            text.push_back(static_cast<Unit>(0xDC00 + ((value - 0x10000) & 0x3FF)));
            return;
        }
    }
    text.push_back(static_cast<Unit>(value));
}

inline void appendUtf8(std::string& text, char32_t value) {
    const auto append = [&](char32_t byte) { text.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (value < 0x80) {
        append(value);
        return;
    }
    if (value < 0x800) {
        append(0xC0 | (value >> 6));
    } else {
        if (value < 0x10000) {
            append(0xE0 | (value >> 12));
        } else {
            append(0xF0 | (value >> 18));
            append(0x80 | ((value >> 12) & 0x3F));
        }
        append(0x80 | ((value >> 6) & 0x3F));
    }
    append(0x80 | (value & 0x3F));
}

/// Returns an upper bound of the length of `text` in UTF-8, exact for ASCII.
template <class Unit>
std::size_t roomInUtf8(std::basic_string_view<Unit> text) {
    std::size_t room = text.size();
    for (const Unit unit : text) {
        const auto value = static_cast<std::uint32_t>(static_cast<std::make_unsigned_t<Unit>>(unit));
        room += value < 0x80 ? 0 : value < 0x800 ? 1 : value < 0x10000 ? 2 : 3;
    }
    return room;
}

template <class Unit>
std::string wideToUtf8(std::basic_string_view<Unit> text) {
    std::string result;
    // Reserves the memory first: a reallocation would leave a copy of the beginning, possibly of a secret, in freed
    // memory.
    result.reserve(roomInUtf8(text));
    for (std::size_t at = 0; at < text.size();) {
        const Decoded decoded = decodeWide(text, at);
        appendUtf8(result, decoded.wellFormed ? decoded.value : replacement);
        at += decoded.length;
    }
    return result;
}

template <class Unit>
std::basic_string<Unit> utf8ToWide(std::string_view text) {
    std::basic_string<Unit> result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Decoded decoded = decodeUtf8(text, at);
        appendWide(result, decoded.wellFormed ? decoded.value : replacement);
        at += decoded.length;
    }
    return result;
}

} // namespace KyrCoreUtils::codepoints
