#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zel {

/// What all encodings put at the end of a full line.
inline constexpr std::string_view encodingLineBreak = "\r\n";

/// Turns bytes into text, six bits a character. Stateless: any thread.
class Encoding {
public:
    /// The 6-bit value of each character, 0 for "=", 0xFF for all other bytes.
    using DecodingTable = std::array<std::uint8_t, 256>;
    enum class LineBreaks { None, After72 };

    virtual ~Encoding() = default;
    virtual std::string_view getAlphabet() const = 0;
    virtual const DecodingTable& getDecodingTable() const = 0;
    /// Stands for each missing character of the last group.
    virtual std::string_view getEncodingPadding() const = 0;
    virtual std::string_view getDecodingPadding() const = 0;
    virtual bool isForUrls() const = 0;

    /// Empty for no bytes. A line of 72 characters gets its break at once, at the very end of the text too.
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
