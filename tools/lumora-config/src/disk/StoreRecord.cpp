#include "StoreRecord.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <string_view>
#include <utility>

namespace lumora_config {

namespace {

/// Returns the parts of the record, each with its closing ";".
std::vector<std::wstring> splitEntries(const std::wstring& text) {
    std::vector<std::wstring> pieces;
    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = text.find(L';', begin);
        const auto length = end == std::wstring::npos ? text.size() - begin : end - begin + 1;
        pieces.push_back(text.substr(begin, length));
        begin += length;
    }
    return pieces;
}

std::optional<StoreRecord::Entry> toEntry(std::wstring piece) {
    if (piece.ends_with(L';')) {
        piece.pop_back();
    }
    std::vector<std::wstring> parts;
    KyrCoreUtils::split(piece, parts, L":");
    if (parts.size() != 2) {
        return std::nullopt;
    }
    return StoreRecord::Entry{parts.front(), parts.back()};
}

bool isEntryOf(const std::optional<StoreRecord::Entry>& entry, const std::wstring& storeName) {
    return entry && KyrCoreUtils::caseInsensitiveStringEquals(entry->name, storeName);
}

/// Accepts the separators of every platform because platforms may share the folder.
bool hasParentComponent(std::string_view name) {
    constexpr std::string_view separators = "/\\";
    while (true) {
        const auto end = name.find_first_of(separators);
        if (name.substr(0, end) == "..") {
            return true;
        }
        if (end == std::string_view::npos) {
            return false;
        }
        name.remove_prefix(end + 1);
    }
}

} // namespace

StoreRecord::StoreRecord(std::wstring recordText) : text(std::move(recordText)) {}

std::optional<StoreRecord::Entry> StoreRecord::find(const std::wstring& storeName) const {
    std::optional<Entry> found;
    for (auto& piece : splitEntries(text)) {
        auto entry = toEntry(std::move(piece));
        if (isEntryOf(entry, storeName)) {
            // Like the service, keeps the first spelling of a name and the last priority.
            found = Entry{found ? found->name : entry->name, entry->priority};
        }
    }
    return found;
}

std::wstring StoreRecord::without(const std::wstring& storeName) const {
    std::wstring rest;
    for (const auto& piece : splitEntries(text)) {
        if (!isEntryOf(toEntry(piece), storeName)) {
            rest += piece;
        }
    }
    return rest;
}

bool StoreRecord::canBeErasedByService(const std::wstring& storeName) const {
    auto cut = text;
    const auto lowered = KyrCoreUtils::toLowercase(text);
    if (const auto begin = lowered.find(KyrCoreUtils::toLowercase(storeName)); begin != std::wstring::npos) {
        const auto end = lowered.find(L';', begin);
        cut.erase(begin, end == std::wstring::npos ? end : end - begin + 1);
    }
    return cut == without(storeName);
}

std::optional<std::string> StoreRecord::findCopyPath(const std::string& configDirectory, const std::string& storeName) {
    const auto fileName = "cached" + storeName + ".dat";
    if (hasParentComponent(storeName)) {
        return std::nullopt;
    }
    const auto separator = KyrCoreUtils::FileUtils::FileSeparator();
    return configDirectory + separator + std::string(ZelUnified::ConfigKeys::cacheDirectory) + separator + fileName;
}

} // namespace lumora_config
