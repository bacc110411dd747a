#include "RegistryTextParser.h"

#include "RegistryTextValueReader.h"
#include "RegistryTree.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <utility>

namespace zel::registry {

namespace {

// The limits of the platform's registry. The first one bounds the recursion depth for a tree from a file.
constexpr std::ptrdiff_t maximumDepth = 512;
constexpr std::size_t maximumKeyName = 255;

HKEY rootOf(std::wstring_view name) {
    using KyrCoreUtils::caseInsensitiveStringEquals;
    if (caseInsensitiveStringEquals(name, L"HKEY_CURRENT_USER") || caseInsensitiveStringEquals(name, L"HKCU")) {
        return HKEY_CURRENT_USER;
    }
    if (caseInsensitiveStringEquals(name, L"HKEY_LOCAL_MACHINE") || caseInsensitiveStringEquals(name, L"HKLM")) {
        return HKEY_LOCAL_MACHINE;
    }
    return {};
}

/// Returns the position of the closing bracket: the first one that only blanks and a comment follow, because a name may
/// contain brackets.
std::size_t findClosingBracket(std::wstring_view text) {
    for (auto at = text.find(L']'); at != std::wstring_view::npos; at = text.find(L']', at + 1)) {
        const auto behind = std::ranges::find_if_not(text.substr(at + 1), isBlank);
        if (behind == text.end() || *behind == L';') {
            return at;
        }
    }
    return std::wstring_view::npos;
}

/// Returns true for a line that was meant to name a key: it begins with the name of a root, or contains a path that
/// ends with a bracket.
bool looksLikeKey(std::wstring_view text) {
    const auto nameStart = text.find_first_not_of(L"-([{<\\/ \t");
    const auto name = text.substr(std::min(nameStart, text.size()));
    const auto root = name.substr(0, name.find_first_of(L"\\/"));
    return rootOf(root) != HKEY{} || KyrCoreUtils::toLowercase(std::wstring(root)).starts_with(L"hkey_") ||
           (text.ends_with(L']') && text.find(L'\\') != std::wstring_view::npos);
}

bool isTooLong(const RegistryValue& value) {
    return value.name.size() > longestRegistryValueName || value.data.size() > longestRegistryValueData;
}

bool isWithinLimits(std::wstring_view path) {
    if (std::ranges::count(path, L'\\') >= maximumDepth) {
        return false;
    }
    std::size_t start = 0;
    for (auto end = path.find(L'\\'); end != std::wstring_view::npos; end = path.find(L'\\', start)) {
        if (end - start > maximumKeyName) {
            return false;
        }
        start = end + 1;
    }
    return path.size() - start <= maximumKeyName;
}

} // namespace

RegistryTextParser::RegistryTextParser(std::string_view bytes, HKEY wantedRoot) : lines(bytes), root(wantedRoot) {}

RegistryText RegistryTextParser::run() {
    if (readHeader()) {
        std::size_t line = 1;
        while (line < lines.getCount()) {
            line = readLine(line);
        }
        closeSection(lines.getCount());
    }
    return std::move(result);
}

bool RegistryTextParser::readHeader() {
    const auto header = lines.getCount() == 0 ? std::wstring() : KyrCoreUtils::trim(lines.getText(0));
    narrowText = header == L"REGEDIT4";
    if (narrowText || header == L"Windows Registry Editor Version 5.00") {
        return true;
    }
    refuse(0, "no exported registry file");
    return false;
}

std::size_t RegistryTextParser::readLine(std::size_t line) {
    const auto text = KyrCoreUtils::trim(lines.getText(line));
    if (text.empty() || text.front() == L';') {
        return line + 1;
    }
    if (text.front() == L'"' || text.front() == L'@') {
        return readValue(line);
    }
    if (text.front() == L'[') {
        readSection(line, text);
    } else if (looksLikeKey(text)) {
        refuseKey(line, "the key does not begin with a bracket");
    } else {
        refuse(line, "neither a key nor a value nor a comment");
    }
    return line + 1;
}

void RegistryTextParser::readSection(std::size_t line, std::wstring_view text) {
    const auto end = findClosingBracket(text);
    if (end == std::wstring_view::npos) {
        return refuseKey(line, "the key has no closing bracket");
    }
    auto name = text.substr(1, end - 1);
    if (name.find(L'\0') != std::wstring_view::npos) {
        return refuseKey(line, "a zero in the name of a key");
    }
    const bool deletion = name.starts_with(L'-');
    name.remove_prefix(deletion ? 1 : 0);
    const auto separator = name.find(L'\\');
    auto path = normalizeKeyPath(separator == std::wstring_view::npos ? std::wstring_view() : name.substr(separator));
    if (rootOf(name.substr(0, separator)) != root) {
        return refuseKey(line, "a key of another root");
    }
    if (!isWithinLimits(path)) {
        return refuseKey(line, "a key that lies too deep or has too long a name");
    }
    if (deletion && path.empty()) {
        return refuseKey(line, "the deletion of a whole root");
    }
    openSection(line, deletion, root, std::move(path));
}

std::size_t RegistryTextParser::readValue(std::size_t line) {
    RegistryTextValueReader reader(lines, narrowText);
    std::size_t next = line + 1;
    auto entry = reader.read(line, next);
    if (entry) {
        addEntry(line, std::move(*entry));
    } else {
        refuse(line, reader.getReason());
    }
    return next;
}

void RegistryTextParser::addEntry(std::size_t line, RegistryTextEntry entry) {
    switch (place) {
    case Place::BeforeFirstKey:
        return refuse(line, "a value before the first key");
    case Place::DeletedKey:
        return refuse(line, "a value of a deleted key");
    case Place::RefusedKey:
        return refuse(line, "a value below a refused key");
    case Place::Key:
        break;
    }
    if (!entry.deletion && isTooLong(entry.value)) {
        return refuse(line, "the name or the value is longer than the client can read");
    }
    result.sections.back().entries.push_back(std::move(entry));
}

void RegistryTextParser::openSection(std::size_t line, bool deletion, HKEY sectionRoot, std::wstring path) {
    closeSection(line);
    place = deletion ? Place::DeletedKey : Place::Key;
    sectionOpen = true;
    result.sections.push_back({line + 1, line + 1, deletion, sectionRoot, std::move(path), {}});
}

/// Ends the section before `line`.
void RegistryTextParser::closeSection(std::size_t line) {
    if (std::exchange(sectionOpen, false)) {
        result.sections.back().lastLine = line;
    }
}

void RegistryTextParser::refuse(std::size_t line, const char* reason) {
    result.refusals.push_back({line + 1, reason});
}

void RegistryTextParser::refuseKey(std::size_t line, const char* reason) {
    closeSection(line);
    place = Place::RefusedKey;
    refuse(line, reason);
}

} // namespace zel::registry
