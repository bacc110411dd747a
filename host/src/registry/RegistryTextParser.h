#pragma once

#include "RegistryTextLines.h"

#include <registry/RegistryTextFile.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zel::registry {

/// Parses the lines of one registry text into sections.
class RegistryTextParser {
public:
    RegistryTextParser(std::string_view bytes, HKEY wantedRoot);

    RegistryText run();

private:
    /// The section to which a value at the current line belongs.
    enum class Place { BeforeFirstKey, Key, DeletedKey, RefusedKey };

    bool readHeader();
    /// Parses the element that begins on that line. Returns the line after it.
    std::size_t readLine(std::size_t line);
    void readSection(std::size_t line, std::wstring_view text);
    std::size_t readValue(std::size_t line);
    void openSection(std::size_t line, bool deletion, HKEY root, std::wstring path);
    void closeSection(std::size_t line);
    void addEntry(std::size_t line, RegistryTextEntry entry);
    void refuse(std::size_t line, const char* reason);
    /// Rejects a line that names a key, and so the values up to the next key.
    void refuseKey(std::size_t line, const char* reason);

    RegistryTextLines lines;
    HKEY root;
    bool narrowText = false;
    bool sectionOpen = false;
    Place place = Place::BeforeFirstKey;
    RegistryText result;
};

} // namespace zel::registry
