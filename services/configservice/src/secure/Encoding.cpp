#include "Encoding.h"

namespace zel {

namespace {

constexpr std::size_t charactersPerLine = 72;
constexpr std::size_t charactersPerGroup = 4;
constexpr std::size_t bytesPerGroup = 3;

std::size_t countLineBreaks(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(encodingLineBreak); at != std::string_view::npos;
         at = text.find(encodingLineBreak, at + encodingLineBreak.size())) {
        ++count;
    }
    return count;
}

/// Returns one to three bytes, left-aligned in 24 bits.
std::uint32_t readGroup(const unsigned char* bytes, std::size_t count) {
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < bytesPerGroup; ++i) {
        group = (group << 8U) | (i < count ? bytes[i] : 0U);
    }
    return group;
}

void appendGroup(std::uint32_t group, std::size_t characters, std::string_view alphabet, std::string& text) {
    for (std::size_t i = 0; i < characters; ++i) {
        text += alphabet[(group >> (18U - 6U * i)) & 0x3FU];
    }
}

} // namespace

std::string Encoding::encode(const unsigned char* bytes, std::size_t length, LineBreaks lineBreaks) const {
    std::string text;
    if (bytes == nullptr || length == 0) {
        return text;
    }
    const std::string_view alphabet = getAlphabet();
    std::size_t emitted = 0;
    std::size_t at = 0;
    for (; length - at >= bytesPerGroup; at += bytesPerGroup) {
        appendGroup(readGroup(bytes + at, bytesPerGroup), charactersPerGroup, alphabet, text);
        emitted += charactersPerGroup;
        if (lineBreaks == LineBreaks::After72 && emitted % charactersPerLine == 0) {
            text += encodingLineBreak;
        }
    }
    if (const std::size_t tail = length - at; tail != 0) {
        appendGroup(readGroup(bytes + at, tail), tail + 1, alphabet, text);
    }
    const std::size_t characters = text.size() - countLineBreaks(text) * encodingLineBreak.size();
    for (std::size_t missing = (charactersPerGroup - characters % charactersPerGroup) % charactersPerGroup;
         missing != 0; --missing) {
        text += getEncodingPadding();
    }
    return text;
}

} // namespace zel
