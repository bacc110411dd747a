#include "Base64.h"

#include <cstdint>

namespace fleet {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::uint32_t byteAt(std::string_view bytes, std::size_t index) {
    return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
}

/// Returns the number of padding characters; 3 if the text has a length that base64 cannot have.
std::size_t countPadding(std::string_view text) {
    if (text.size() % 4 != 0) {
        return 3;
    }
    return text.ends_with("==") ? 2 : (text.ends_with('=') ? 1 : 0);
}

} // namespace

std::string encodeBase64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t index = 0; index < bytes.size(); index += 3) {
        const auto group = byteAt(bytes, index) << 16U | byteAt(bytes, index + 1) << 8U | byteAt(bytes, index + 2);
        text += alphabet[group >> 18U & 63U];
        text += alphabet[group >> 12U & 63U];
        text += index + 1 < bytes.size() ? alphabet[group >> 6U & 63U] : '=';
        text += index + 2 < bytes.size() ? alphabet[group & 63U] : '=';
    }
    return text;
}

std::optional<std::string> decodeBase64(std::string_view text) {
    const auto padding = countPadding(text);
    if (padding > 2) {
        return std::nullopt;
    }
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    std::size_t count = 0;
    for (const char character : text.substr(0, text.size() - padding)) {
        const auto digit = alphabet.find(character);
        if (digit == std::string_view::npos) {
            return std::nullopt;
        }
        bits = bits << 6U | static_cast<std::uint32_t>(digit);
        // Each digit but the first of four completes a byte.
        if (++count % 4 != 1) {
            const auto shift = count % 4 == 2 ? 4U : (count % 4 == 3 ? 2U : 0U);
            bytes += static_cast<char>(bits >> shift & 0xFFU);
        }
    }
    return bytes;
}

} // namespace fleet
