#pragma once

#include <registry/RegistryTextFile.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Functions that parse registry texts.
namespace registry_text_test {

using namespace zel::registry;

inline const std::string header = "Windows Registry Editor Version 5.00\r\n\r\n";

inline RegistryText parse(const std::string& bytes) {
    return parseRegistryText(bytes, HKEY_CURRENT_USER);
}

/// Returns the text in UTF-16LE with a byte order mark, like an export.
inline std::string toUtf16File(std::wstring_view text) {
    const auto data = encodeRegistryText(text);
    return "\xFF\xFE" + std::string(data.begin(), data.end() - 2);
}

/// Returns the entries of a file with one key.
inline std::vector<RegistryTextEntry> entriesOf(const std::string& lines) {
    const auto text = parse(header + "[HKEY_CURRENT_USER\\K]\r\n" + lines);
    EXPECT_THAT(text.refusals, testing::IsEmpty());
    EXPECT_THAT(text.sections, testing::SizeIs(1));
    return text.sections.empty() ? std::vector<RegistryTextEntry>{} : text.sections[0].entries;
}

inline RegistryValue valueOf(const std::string& line) {
    const auto entries = entriesOf(line + "\r\n");
    EXPECT_THAT(entries, testing::SizeIs(1));
    return entries.empty() ? RegistryValue{} : entries[0].value;
}

/// Returns the line and reason of the only refusal in a file with one key.
inline std::pair<std::size_t, std::string> refusalOf(const std::string& lines) {
    const auto text = parse(header + "[HKEY_CURRENT_USER\\K]\r\n" + lines);
    if (text.refusals.size() != 1) {
        return {0, "not one refusal but " + std::to_string(text.refusals.size())};
    }
    return {text.refusals[0].line, text.refusals[0].reason};
}

} // namespace registry_text_test
