#include "RegistryTextValueReader.h"

#include <kyr/StringUtils.h>

#include <utility>

namespace zel::registry {

namespace {

/// Returns -1 if `c` is not a hexadecimal digit.
int digitOf(wchar_t c) {
    if (c >= L'0' && c <= L'9') {
        return static_cast<int>(c - L'0');
    }
    if (c >= L'a' && c <= L'f') {
        return static_cast<int>(c - L'a') + 10;
    }
    return c >= L'A' && c <= L'F' ? static_cast<int>(c - L'A') + 10 : -1;
}

/// Converts the bytes of the older version of the format to UTF-16. They contain their own terminators.
std::vector<std::uint8_t> widen(const std::vector<std::uint8_t>& bytes) {
    auto data = encodeRegistryText(KyrCoreUtils::toWideString(std::string(bytes.begin(), bytes.end())));
    data.pop_back();
    data.pop_back();
    return data;
}

/// Returns true for a line that begins like a key. No value continues there: a quote or a byte that is missing above it
/// must not hide the key.
bool beginsKey(std::wstring_view line) {
    const auto text = KyrCoreUtils::trim(line);
    if (!text.starts_with(L'[')) {
        return false;
    }
    const std::size_t name = text.starts_with(L"[-") ? 2 : 1;
    return KyrCoreUtils::caseInsensitiveStringEquals(std::wstring_view(text).substr(name, 2), L"HK");
}

} // namespace

/// A cursor for parsing one line.
class RegistryTextValueReader::Cursor {
public:
    explicit Cursor(std::wstring lineText) : text(std::move(lineText)) {}

    bool atEnd() const { return position >= text.size(); }
    /// Returns NUL at the end.
    wchar_t peek() const { return atEnd() ? L'\0' : text[position]; }
    /// Returns the current character and advances by one. Do not call at the end.
    wchar_t next() { return text[position++]; }
    std::wstring_view rest() const { return std::wstring_view(text).substr(position); }

    void skipBlanks() {
        while (!atEnd() && isBlank(peek())) {
            ++position;
        }
    }

    /// Skips `word` if the rest of the line starts with it. Returns false otherwise.
    bool skip(std::wstring_view word) {
        if (!rest().starts_with(word)) {
            return false;
        }
        position += word.size();
        return true;
    }

    /// Returns true if only blanks and a comment follow.
    bool isDone() {
        skipBlanks();
        return atEnd() || peek() == L';';
    }

    /// Reads one to `maximum` hexadecimal digits. Returns false if there are none or more.
    bool readHex(int maximum, std::uint32_t& number) {
        number = 0;
        int count = 0;
        for (int digit = digitOf(peek()); digit >= 0; digit = digitOf(peek())) {
            if (++count > maximum) {
                return false;
            }
            number = number << 4 | static_cast<std::uint32_t>(digit);
            next();
        }
        return count > 0;
    }

    /// Reads up to the closing quote. Returns false if the line ends before it.
    bool readToQuote(std::wstring& read) {
        while (!atEnd()) {
            const auto c = next();
            if (c == L'"') {
                return true;
            }
            // Only these two characters are escaped; a hand-written path keeps its other backslashes.
            if (c == L'\\' && (peek() == L'\\' || peek() == L'"')) {
                read.push_back(next());
            } else {
                read.push_back(c);
            }
        }
        return false;
    }

private:
    std::wstring text;
    std::size_t position = 0;
};

std::optional<RegistryTextEntry> RegistryTextValueReader::read(std::size_t line, std::size_t& next) {
    current = line;
    Cursor cursor(lines.getText(line));
    RegistryTextEntry entry;
    entry.line = line + 1;
    cursor.skipBlanks();
    if (readName(cursor, entry.value.name) && readData(cursor, entry)) {
        next = current + 1;
        return entry;
    }
    current = line;
    skipContinuation();
    next = current + 1;
    return std::nullopt;
}

bool RegistryTextValueReader::readName(Cursor& cursor, std::wstring& name) {
    if (cursor.next() == L'"' && !cursor.readToQuote(name)) {
        return fail("the name has no closing quote");
    }
    cursor.skipBlanks();
    return cursor.skip(L"=") || fail("no \"=\" behind the name");
}

bool RegistryTextValueReader::readData(Cursor& cursor, RegistryTextEntry& entry) {
    cursor.skipBlanks();
    bool isRead = false;
    if (cursor.skip(L"-")) {
        entry.deletion = true;
        isRead = true;
    } else if (cursor.skip(L"\"")) {
        isRead = readQuoted(cursor, entry.value);
    } else if (cursor.skip(L"dword:")) {
        isRead = readNumber(cursor, entry.value);
    } else if (cursor.skip(L"hex")) {
        return readType(cursor, entry.value.type) && readBytes(cursor, entry.value);
    } else {
        return fail("a kind of value that is not known");
    }
    return isRead && (cursor.isDone() || fail("text behind the value"));
}

bool RegistryTextValueReader::readQuoted(Cursor& cursor, RegistryValue& value) {
    std::wstring text;
    while (!cursor.readToQuote(text)) {
        // A text of several lines is exported with unescaped line ends.
        if (++current >= lines.getCount() || beginsKey(lines.getText(current))) {
            return fail("the value has no closing quote");
        }
        text.push_back(L'\n');
        cursor = Cursor(lines.getText(current));
    }
    value.type = REG_SZ;
    value.data = encodeRegistryText(text);
    return true;
}

bool RegistryTextValueReader::readNumber(Cursor& cursor, RegistryValue& value) {
    std::uint32_t number = 0;
    cursor.skipBlanks();
    if (!cursor.readHex(8, number)) {
        return fail("a number of one to eight hexadecimal digits is missing");
    }
    value.type = REG_DWORD;
    value.data = makeNumberValue({}, number).data;
    return true;
}

bool RegistryTextValueReader::readType(Cursor& cursor, std::uint32_t& type) {
    type = REG_BINARY;
    if (cursor.skip(L"(") && !(cursor.readHex(8, type) && cursor.skip(L")"))) {
        return fail("the kind between brackets is no number");
    }
    return cursor.skip(L":") || fail("no \":\" behind the kind");
}

bool RegistryTextValueReader::readBytes(Cursor& cursor, RegistryValue& value) {
    while (!cursor.isDone()) {
        if (cursor.skip(L"\\")) {
            if (!cursor.isDone()) {
                return fail("text behind the sign of continuation");
            }
            if (!readContinuation(cursor)) {
                break;
            }
            continue;
        }
        std::uint32_t byte = 0;
        if (!cursor.readHex(2, byte)) {
            return fail("a byte of two hexadecimal digits is missing");
        }
        value.data.push_back(static_cast<std::uint8_t>(byte));
        cursor.skipBlanks();
        if (!cursor.skip(L",") && !cursor.isDone() && cursor.peek() != L'\\') {
            return fail("bytes that are not separated by commas");
        }
    }
    if (narrowText && isRegistryText(value.type)) {
        value.data = widen(value.data);
    }
    return true;
}

/// Advances to the next line that is not a comment. Returns false if the value ends first: at the end of the file, at a
/// blank line or at a key.
bool RegistryTextValueReader::readContinuation(Cursor& cursor) {
    while (current + 1 < lines.getCount()) {
        Cursor following(lines.getText(current + 1));
        following.skipBlanks();
        if (following.atEnd() || beginsKey(following.rest())) {
            return false;
        }
        ++current;
        if (following.peek() != L';') {
            cursor = std::move(following);
            return true;
        }
    }
    return false;
}

bool RegistryTextValueReader::fail(const char* text) {
    reason = text;
    return false;
}

/// Skips the continuation lines of a malformed line; they are not separate faults.
void RegistryTextValueReader::skipContinuation() {
    while (current + 1 < lines.getCount()) {
        const auto text = KyrCoreUtils::trim(lines.getText(current));
        if (!text.ends_with(L'\\') || beginsKey(lines.getText(current + 1))) {
            return;
        }
        ++current;
    }
}

} // namespace zel::registry
