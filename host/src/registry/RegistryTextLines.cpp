#include "RegistryTextLines.h"

#include <kyr/StringUtils.h>
#include <registry/RegistryValue.h>

#include <span>

namespace zel::registry {

namespace {

constexpr std::string_view utf16Mark = "\xFF\xFE";
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

std::wstring decodeUtf16(std::string_view bytes) {
    auto text = decodeAllRegistryText({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    if constexpr (sizeof(wchar_t) == 2) {
        // Replaces a lone surrogate, as wider characters do: files are written in UTF-8, which has none.
        text = KyrCoreUtils::toWideString(KyrCoreUtils::toString(text));
    }
    return text;
}

} // namespace

RegistryTextLines::RegistryTextLines(std::string_view fileBytes) : bytes(fileBytes) {
    if (bytes.starts_with(utf16Mark)) {
        markSize = utf16Mark.size();
        unitSize = 2;
    } else if (bytes.starts_with(utf8Mark)) {
        markSize = utf8Mark.size();
    }
    std::size_t start = 0;
    for (auto i = markSize; i + unitSize <= bytes.size(); i += unitSize) {
        if (bytes[i] == '\n' && (!isUtf16() || bytes[i + 1] == '\0')) {
            starts.push_back(start);
            start = i + unitSize;
        }
    }
    if (start < bytes.size()) {
        starts.push_back(start);
    }
}

std::wstring RegistryTextLines::getText(std::size_t index) const {
    auto line = getBytes(index);
    if (index == 0) {
        line.remove_prefix(markSize);
    }
    auto text = isUtf16() ? decodeUtf16(line) : KyrCoreUtils::toWideString(line);
    if (text.ends_with(L'\n')) {
        text.pop_back();
    }
    return text;
}

std::string_view RegistryTextLines::getBytes(std::size_t index) const {
    const auto end = index + 1 < starts.size() ? starts[index + 1] : bytes.size();
    return bytes.substr(starts[index], end - starts[index]);
}

} // namespace zel::registry
