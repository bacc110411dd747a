#pragma once

#include "RegistryTextCursor.h"
#include "RegistryTextLines.h"

#include <registry/RegistryTextFile.h>

#include <cstddef>
#include <optional>

namespace zel::registry {

/// Reads one value of a registry text, over as many lines as it takes.
class RegistryTextValueReader {
public:
    /// `narrow`: text kinds in hexadecimal are bytes and not UTF-16, as in the older version of the format.
    RegistryTextValueReader(const RegistryTextLines& textLines, bool narrow) : lines(textLines), narrowText(narrow) {}

    /// Reads what begins on that line with a quote or "@". On success `next` is the line behind the value. On a failure
    /// it is the line to go on with, and the reason is set.
    std::optional<RegistryTextEntry> read(std::size_t line, std::size_t& next);
    const char* getReason() const { return reason; }

private:
    bool readName(RegistryTextCursor& cursor, std::wstring& name);
    bool readData(RegistryTextCursor& cursor, RegistryTextEntry& entry);
    bool readQuoted(RegistryTextCursor& cursor, RegistryValue& value);
    bool readNumber(RegistryTextCursor& cursor, RegistryValue& value);
    bool readBytes(RegistryTextCursor& cursor, RegistryValue& value);
    bool readType(RegistryTextCursor& cursor, std::uint32_t& type);
    bool readContinuation(RegistryTextCursor& cursor);
    bool fail(const char* text);
    void skipContinuation();

    const RegistryTextLines& lines;
    bool narrowText;
    const char* reason = "";
    /// The line being read.
    std::size_t current = 0;
};

} // namespace zel::registry
