#pragma once

#include "RegistryTextLines.h"

#include <registry/RegistryTextFile.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace zel::registry {

/// Parses one value of a registry text, which may span several lines.
class RegistryTextValueReader {
public:
    /// With `narrow`, hexadecimal data of text types is bytes instead of UTF-16, as in the older version of the format.
    RegistryTextValueReader(const RegistryTextLines& textLines, bool narrow) : lines(textLines), narrowText(narrow) {}

    /// Parses the value that begins on that line with a quote or "@". On success sets `next` to the line after the
    /// value. On failure returns nullopt, sets the reason, and sets `next` to the line at which parsing can continue.
    std::optional<RegistryTextEntry> read(std::size_t line, std::size_t& next);
    const char* getReason() const { return reason; }

private:
    class Cursor;

    bool readName(Cursor& cursor, std::wstring& name);
    bool readData(Cursor& cursor, RegistryTextEntry& entry);
    bool readQuoted(Cursor& cursor, RegistryValue& value);
    bool readNumber(Cursor& cursor, RegistryValue& value);
    bool readBytes(Cursor& cursor, RegistryValue& value);
    bool readType(Cursor& cursor, std::uint32_t& type);
    bool readContinuation(Cursor& cursor);
    bool fail(const char* text);
    void skipContinuation();

    const RegistryTextLines& lines;
    bool narrowText;
    const char* reason = "";
    /// The line that is being read.
    std::size_t current = 0;
};

} // namespace zel::registry
