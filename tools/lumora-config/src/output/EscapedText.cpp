#include "EscapedText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace lumora_config {

namespace {

enum class LineBreaks { Escape, Keep };
enum class Apostrophes { Escape, Keep };

/// The well-formed UTF-8 sequences by their first byte, with the limits of the second byte.
struct SequenceForm {
    unsigned char firstFrom;
    unsigned char firstTo;
    std::size_t length;
    unsigned char secondFrom;
    unsigned char secondTo;
};
constexpr std::array<SequenceForm, 8> sequenceForms{{{0xC2, 0xDF, 2, 0x80, 0xBF},
                                                     {0xE0, 0xE0, 3, 0xA0, 0xBF},
                                                     {0xE1, 0xEC, 3, 0x80, 0xBF},
                                                     {0xED, 0xED, 3, 0x80, 0x9F},
                                                     {0xEE, 0xEF, 3, 0x80, 0xBF},
                                                     {0xF0, 0xF0, 4, 0x90, 0xBF},
                                                     {0xF1, 0xF3, 4, 0x80, 0xBF},
                                                     {0xF4, 0xF4, 4, 0x80, 0x8F}}};

unsigned char byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

bool isFollower(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Returns the number of bytes of the sequence at the start of `text`, or 0 if it is ill-formed.
std::size_t lengthOfSequence(std::string_view text) {
    const auto first = byteAt(text, 0);
    if (first < 0x80U) {
        return 1;
    }
    const auto* const form = std::ranges::find_if(sequenceForms, [first](const SequenceForm& candidate) {
        return first >= candidate.firstFrom && first <= candidate.firstTo;
    });
    if (form == sequenceForms.end() || text.size() < form->length) {
        return 0;
    }
    const auto second = byteAt(text, 1);
    const bool wellFormed = second >= form->secondFrom && second <= form->secondTo &&
                            std::ranges::all_of(text.substr(2, form->length - 2), isFollower);
    return wellFormed ? form->length : 0;
}

void appendHex(std::string& text, unsigned char byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
}

void appendByte(std::string& text, unsigned char byte) {
    text += "\\x";
    appendHex(text, byte);
}

void appendAscii(std::string& text, char character, LineBreaks lineBreaks) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isKept = lineBreaks == LineBreaks::Keep && (character == '\n' || character == '\t');
    if (isKept || (byte >= 0x20U && byte != 0x7FU)) {
        text += character;
    } else if (character == '\n') {
        text += "\\n";
    } else {
        appendByte(text, byte);
    }
}

void appendSequence(std::string& text, std::string_view sequence) {
    constexpr std::string_view lineSeparator = "\xE2\x80\xA8";
    constexpr std::string_view paragraphSeparator = "\xE2\x80\xA9";
    if (sequence.size() == 2 && byteAt(sequence, 0) == 0xC2U && byteAt(sequence, 1) < 0xA0U) {
        text += "\\u00"; // C1: the second byte is the code point
        appendHex(text, byteAt(sequence, 1));
    } else if (sequence == lineSeparator) {
        text += "\\u2028";
    } else if (sequence == paragraphSeparator) {
        text += "\\u2029";
    } else {
        text += sequence;
    }
}

std::string escape(std::string_view text, LineBreaks lineBreaks) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const auto length = lengthOfSequence(text);
        if (length == 0) {
            appendByte(shown, byteAt(text, 0));
        } else if (length == 1) {
            appendAscii(shown, text.front(), lineBreaks);
        } else {
            appendSequence(shown, text.substr(0, length));
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return shown;
}

constexpr char32_t deleteCharacter = 0x7f;

bool isControl(char32_t c) {
    return (c < 0x20 && c != U'\n' && c != U'\t') || c == deleteCharacter;
}

/// Bidirectional marks, which could make a value look like another one.
bool isBidirectionalMark(char32_t c) {
    return c == 0x200e || c == 0x200f || (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069);
}

wchar_t symbolOf(char32_t control) {
    constexpr char32_t firstSymbol = 0x2400;
    constexpr char32_t deleteSymbol = 0x2421;
    return static_cast<wchar_t>(control == deleteCharacter ? deleteSymbol : firstSymbol + control);
}

std::wstring nameOf(char32_t c) {
    constexpr std::wstring_view digits = L"0123456789ABCDEF";
    std::wstring name = L"[U+";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        name += digits[(c >> shift) & 0xfU];
    }
    return name + L']';
}

std::string escapeMarkup(std::string_view text, Apostrophes apostrophes) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += apostrophes == Apostrophes::Escape ? "&#39;" : "'";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

} // namespace

std::string toOneLine(std::string_view text) {
    return escape(text, LineBreaks::Escape);
}

std::string toVisibleLines(std::string_view text) {
    return escape(text, LineBreaks::Keep);
}

std::string escapeXml(std::string_view text) {
    return escapeMarkup(text, Apostrophes::Keep);
}

std::string escapeHtml(std::string_view text) {
    return escapeMarkup(text, Apostrophes::Escape);
}

std::wstring makeVisible(std::wstring_view text) {
    std::wstring visible;
    visible.reserve(text.size());
    for (const wchar_t unit : text) {
        const auto c = static_cast<char32_t>(unit);
        if (isControl(c)) {
            visible += symbolOf(c);
        } else if (isBidirectionalMark(c)) {
            visible += nameOf(c);
        } else {
            visible += unit;
        }
    }
    return visible;
}

} // namespace lumora_config
