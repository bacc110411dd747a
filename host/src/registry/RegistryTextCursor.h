#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace zel::registry {

inline bool isBlank(wchar_t c) {
    return c == L' ' || c == L'\t' || c == L'\r';
}

/// A cursor for parsing one line.
class RegistryTextCursor {
public:
    explicit RegistryTextCursor(std::wstring lineText) : text(std::move(lineText)) {}

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

private:
    std::wstring text;
    std::size_t position = 0;
};

} // namespace zel::registry
