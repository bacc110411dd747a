#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zel::registry {

inline bool isBlank(wchar_t c) {
    return c == L' ' || c == L'\t' || c == L'\r';
}

/// The lines of a registry text. Decodes one line at a time and also returns its bytes, so that lines can be cut from a
/// file without changing the others. Holds a view: the bytes must outlive it.
class RegistryTextLines {
public:
    explicit RegistryTextLines(std::string_view fileBytes);

    std::size_t getCount() const { return starts.size(); }
    /// Returns the line without its LF, but with a CR before it.
    std::wstring getText(std::size_t index) const;
    /// Returns the bytes of the line with its line end. The first line includes the byte order mark, if there is one.
    std::string_view getBytes(std::size_t index) const;

private:
    bool isUtf16() const { return unitSize == 2; }

    std::string_view bytes;
    std::size_t markSize = 0;
    std::size_t unitSize = 1;
    std::vector<std::size_t> starts;
};

} // namespace zel::registry
