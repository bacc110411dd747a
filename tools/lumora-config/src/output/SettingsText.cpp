#include "SettingsText.h"

#include "Failure.h"

#include <kyr/StringUtils.h>

#include <algorithm>

namespace lumora_config {

namespace {

using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;

constexpr std::wstring_view secretWord = L"secret";
constexpr std::wstring_view hiddenWord = L"hidden";
constexpr std::wstring_view hexDigits = L"0123456789abcdef";

/// Controls, line separators, bidirectional marks and the byte order mark, which an editor may hide or change.
bool mustEscape(wchar_t character) {
    const auto c = static_cast<char32_t>(character);
    return c < 0x20 || (c >= 0x7f && c < 0xa0) || c == 0x200e || c == 0x200f || (c >= 0x2028 && c <= 0x202e) ||
           (c >= 0x2066 && c <= 0x2069) || c == 0xfeff || c == 0xfffe || c == 0xffff;
}

void appendEscaped(std::wstring& text, wchar_t character) {
    constexpr std::wstring_view escapable = L"\n\r\t\"\\";
    constexpr std::wstring_view letters = L"nrt\"\\";
    if (const auto place = escapable.find(character); place != std::wstring_view::npos) {
        text += L'\\';
        text += letters[place];
    } else if (mustEscape(character)) {
        text += L"\\u";
        for (const unsigned shift : {12U, 8U, 4U, 0U}) {
            text += hexDigits[(static_cast<char32_t>(character) >> shift) & 0xfU];
        }
    } else {
        text += character;
    }
}

std::wstring toEscaped(std::wstring_view text) {
    std::wstring escaped;
    escaped.reserve(text.size());
    for (const wchar_t character : text) {
        appendEscaped(escaped, character);
    }
    return escaped;
}

std::wstring toQuoted(std::wstring_view text) {
    return L'"' + toEscaped(text) + L'"';
}

bool isBareKey(std::wstring_view key) {
    constexpr std::wstring_view special = L" =#\"\\{";
    return !key.empty() && std::ranges::none_of(key, [&](wchar_t character) {
        return mustEscape(character) || special.find(character) != std::wstring_view::npos;
    });
}

/// Reads one line of a dump from its start to its end.
class DumpLineReader {
public:
    DumpLineReader(std::wstring_view line, std::string linePlace) : rest(line), place(std::move(linePlace)) {}

    DumpedSetting readSetting() {
        DumpedSetting setting;
        setting.key = isAt(L'"') ? readQuoted() : std::wstring(readWord());
        if (setting.key.empty()) {
            refuse("there is no key");
        }
        skipBlanks();
        if (!isAt(L'=')) {
            refuse("'=' is missing behind the key");
        }
        rest.remove_prefix(1);
        readValue(setting);
        skipBlanks();
        readStore(setting);
        return setting;
    }

    void skipBlanks() { rest.remove_prefix(std::min(rest.find_first_not_of(L" \t"), rest.size())); }
    bool isAt(wchar_t character) const { return !rest.empty() && rest.front() == character; }
    bool isAtEnd() const { return rest.empty(); }

private:
    [[noreturn]] void refuse(const std::string& reason) const {
        throw Failure(ExitCode::Environment, place + ": " + reason);
    }

    std::wstring_view readWord() {
        const auto word = rest.substr(0, std::min(rest.find_first_of(L" \t=#\""), rest.size()));
        rest.remove_prefix(word.size());
        return word;
    }

    void readValue(DumpedSetting& setting) {
        skipBlanks();
        if (!isAt(L'"')) {
            const auto word = readWord();
            setting.hidden = word == hiddenWord;
            setting.sensitive = setting.hidden || word == secretWord;
            if (!setting.sensitive) {
                refuse("the value is not in quotes");
            }
            skipBlanks();
        }
        if (setting.hidden) {
            return;
        }
        if (!isAt(L'"')) {
            refuse("the value is not in quotes");
        }
        setting.value = readQuoted();
    }

    void readStore(DumpedSetting& setting) {
        if (rest.empty()) {
            return;
        }
        if (!isAt(L'#')) {
            refuse("there is text behind the value");
        }
        rest.remove_prefix(1);
        skipBlanks();
        while (!rest.empty()) {
            setting.storeName += readCharacter();
        }
    }

    std::wstring readQuoted() {
        std::wstring text;
        rest.remove_prefix(1);
        while (!isAt(L'"')) {
            if (rest.empty()) {
                refuse("a quote is not closed");
            }
            text += readCharacter();
        }
        rest.remove_prefix(1);
        return text;
    }

    wchar_t readCharacter() {
        const wchar_t character = rest.front();
        rest.remove_prefix(1);
        return character == L'\\' ? readEscape() : character;
    }

    wchar_t readEscape() {
        constexpr std::wstring_view letters = L"nrt\"\\";
        constexpr std::wstring_view meanings = L"\n\r\t\"\\";
        const wchar_t letter = rest.empty() ? L'\0' : rest.front();
        rest.remove_prefix(rest.empty() ? 0 : 1);
        if (const auto found = letters.find(letter); found != std::wstring_view::npos) {
            return meanings[found];
        }
        if (letter != L'u' || rest.size() < 4) {
            refuse("an escape is not one of \\\" \\\\ \\n \\r \\t \\uXXXX");
        }
        return readCodePoint();
    }

    wchar_t readCodePoint() {
        char32_t code = 0;
        for (const wchar_t digit : rest.substr(0, 4)) {
            const auto lower = digit >= L'A' && digit <= L'F' ? static_cast<wchar_t>(digit - L'A' + L'a') : digit;
            const auto value = hexDigits.find(lower);
            if (value == std::wstring_view::npos) {
                refuse("an escape is not one of \\\" \\\\ \\n \\r \\t \\uXXXX");
            }
            code = code * 16 + static_cast<char32_t>(value);
        }
        if (code >= 0xd800 && code <= 0xdfff) {
            refuse("an escape names half of a character; write the character itself");
        }
        rest.remove_prefix(4);
        return static_cast<wchar_t>(code);
    }

    std::wstring_view rest;
    const std::string place;
};

constexpr std::string_view header = "# lumora-config dump: ";

void parseDumpLine(std::string_view line, const std::string& place, SettingsDump& dump) {
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    if (line.starts_with(header) && dump.source.empty()) {
        dump.source = line.substr(header.size());
        return;
    }
    const auto wideLine = toWideString(line);
    DumpLineReader reader(wideLine, place);
    reader.skipBlanks();
    if (!reader.isAtEnd() && !reader.isAt(L'#')) {
        dump.settings.push_back(reader.readSetting());
    }
}

} // namespace

std::string formatSetting(const DumpedSetting& setting) {
    std::wstring line = isBareKey(setting.key) ? setting.key : toQuoted(setting.key);
    line += L" = ";
    if (setting.hidden) {
        line += hiddenWord;
    } else {
        line += setting.sensitive ? std::wstring(secretWord) + L' ' : L"";
        line += toQuoted(setting.value);
    }
    if (!setting.storeName.empty()) {
        line += L"  # " + toEscaped(setting.storeName);
    }
    return toString(line);
}

std::string formatSettings(const SettingsDump& dump) {
    auto text = std::string(header) + toString(toEscaped(toWideString(dump.source))) + '\n';
    for (const auto& setting : dump.settings) {
        text += formatSetting(setting) + '\n';
    }
    return text;
}

SettingsDump parseDump(std::string_view content, const std::string& name) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (content.starts_with(byteOrderMark)) {
        content.remove_prefix(byteOrderMark.size());
    }
    if (toString(toWideString(content)) != content) {
        throw Failure(ExitCode::Environment, name + ": not UTF-8");
    }
    const auto start = content.find_first_not_of(" \t\r\n");
    if (start != std::string_view::npos && content[start] == '{') {
        return parseJsonDump(content, name);
    }
    SettingsDump dump{"", {}, name};
    for (std::size_t line = 1; !content.empty(); ++line) {
        const auto end = std::min(content.find('\n'), content.size());
        parseDumpLine(content.substr(0, end), name + ':' + std::to_string(line), dump);
        content.remove_prefix(std::min(end + 1, content.size()));
    }
    return dump;
}

} // namespace lumora_config
