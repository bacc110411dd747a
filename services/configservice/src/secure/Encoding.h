#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zel {

/// The line break after a full line, in all encodings.
inline constexpr std::string_view encodingLineBreak = "\r\n";

/// Encodes bytes as text, six bits per character. Stateless; any thread.
class Encoding {
public:
    /// The 6-bit value of each character, 0 for "=", 0xFF for all other bytes.
    using DecodingTable = std::array<std::uint8_t, 256>;
    enum class LineBreaks { None, After72 };

    virtual ~Encoding() = default;
    virtual std::string_view getAlphabet() const = 0;
    virtual const DecodingTable& getDecodingTable() const = 0;
    /// Replaces each missing character of the last group.
    virtual std::string_view getEncodingPadding() const = 0;
    virtual std::string_view getDecodingPadding() const = 0;
    virtual bool isForUrls() const = 0;

    /// Returns the encoded text, empty for no bytes. Each line of 72 characters ends with a line break, including the
    /// last one if it is full.
    std::string encode(const unsigned char* bytes, std::size_t length, LineBreaks lineBreaks) const;

protected:
    static constexpr DecodingTable makeDecodingTable(std::string_view alphabet) {
        DecodingTable table{};
        table.fill(0xFF);
        for (std::size_t i = 0; i < alphabet.size(); ++i) {
            table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
        }
        table[static_cast<unsigned char>('=')] = 0;
        return table;
    }
};

} // namespace zel
