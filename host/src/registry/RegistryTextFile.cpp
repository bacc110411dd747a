#include "RegistryTextParser.h"

#include <kyr/StringUtils.h>
#include <registry/RegistryTextFile.h>

#include <algorithm>

namespace zel::registry {

namespace {

constexpr std::string_view lineEnd = "\r\n";

std::string hexOf(std::uint32_t number, std::size_t width) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (; number > 0 || text.size() < width; number >>= 4) {
        text.insert(text.begin(), digits[number & 0xF]);
    }
    return text;
}

std::string inQuotes(std::wstring_view text) {
    std::string result = "\"";
    for (const char c : KyrCoreUtils::toString(text)) {
        if (c == '"' || c == '\\') {
            result.push_back('\\');
        }
        result.push_back(c);
    }
    return result + '"';
}

/// Returns true if the value can be written as quoted text on one line without changing its data.
bool isPlainText(const RegistryValue& value) {
    if (value.type != REG_SZ) {
        return false;
    }
    const auto text = decodeRegistryText(value.data);
    return encodeRegistryText(text) == value.data && text.find_first_of(L"\r\n") == std::wstring::npos;
}

std::string formatData(const RegistryValue& value) {
    if (isPlainText(value)) {
        return inQuotes(decodeRegistryText(value.data));
    }
    if (value.type == REG_DWORD && value.data.size() == 4) {
        std::uint32_t number = 0;
        for (auto byte = value.data.rbegin(); byte != value.data.rend(); ++byte) {
            number = number << 8 | *byte;
        }
        return "dword:" + hexOf(number, 8);
    }
    std::string text = value.type == REG_BINARY ? "hex:" : "hex(" + hexOf(value.type, 1) + "):";
    for (const auto byte : value.data) {
        text += hexOf(byte, 2) + ',';
    }
    if (text.ends_with(',')) {
        text.pop_back();
    }
    return text;
}

std::string formatEntry(const RegistryTextEntry& entry) {
    const auto name = entry.value.name.empty() ? std::string("@") : inQuotes(entry.value.name);
    return name + '=' + (entry.deletion ? "-" : formatData(entry.value));
}

} // namespace

RegistryText parseRegistryText(std::string_view bytes, HKEY root) {
    return RegistryTextParser(bytes, root).run();
}

std::string formatRegistryText(std::span<const RegistryTextSection> sections) {
    std::string text = "Windows Registry Editor Version 5.00";
    text.append(lineEnd);
    for (const auto& section : sections) {
        text.append(lineEnd).append(section.deletion ? "[-" : "[");
        text += section.root == HKEY_LOCAL_MACHINE ? "HKEY_LOCAL_MACHINE" : "HKEY_CURRENT_USER";
        text += section.path.empty() ? "" : '\\' + KyrCoreUtils::toString(section.path);
        text.append("]").append(lineEnd);
        for (const auto& entry : section.entries) {
            text.append(formatEntry(entry)).append(lineEnd);
        }
    }
    return text;
}

std::string cutRegistryText(std::string_view bytes, std::span<const RegistryTextSection> sections) {
    const RegistryTextLines lines(bytes);
    std::vector<bool> cut(lines.getCount(), false);
    for (const auto& section : sections) {
        for (auto line = section.firstLine; line <= std::min(section.lastLine, cut.size()); ++line) {
            cut[line - 1] = true;
        }
    }
    std::string rest;
    for (std::size_t i = 0; i < cut.size(); ++i) {
        if (!cut[i]) {
            rest.append(lines.getBytes(i));
        }
    }
    return rest;
}

} // namespace zel::registry
