#include "StoreRecord.h"

#include <kyr/StringUtils.h>

#include <utility>

namespace lumora_config {

namespace {

/// Returns the parts of the record, each with its closing ";".
std::vector<std::wstring> piecesOf(const std::wstring& text) {
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

bool isOf(const std::optional<StoreRecord::Entry>& entry, const std::wstring& storeName) {
    return entry && KyrCoreUtils::caseInsensitiveStringEquals(entry->name, storeName);
}

} // namespace

StoreRecord::StoreRecord(std::wstring recordText) : text(std::move(recordText)) {}

std::optional<StoreRecord::Entry> StoreRecord::find(const std::wstring& storeName) const {
    std::optional<Entry> found;
    for (auto& piece : piecesOf(text)) {
        auto entry = toEntry(std::move(piece));
        if (isOf(entry, storeName)) {
            // Like the service, keeps the first spelling of a name and the last priority.
            found = Entry{found ? found->name : entry->name, entry->priority};
        }
    }
    return found;
}

std::wstring StoreRecord::without(const std::wstring& storeName) const {
    std::wstring rest;
    for (const auto& piece : piecesOf(text)) {
        if (!isOf(toEntry(piece), storeName)) {
            rest += piece;
        }
    }
    return rest;
}

bool StoreRecord::isCutAsWhole(const std::wstring& storeName) const {
    auto cut = text;
    const auto lowered = KyrCoreUtils::toLowercase(text);
    if (const auto begin = lowered.find(KyrCoreUtils::toLowercase(storeName)); begin != std::wstring::npos) {
        const auto end = lowered.find(L';', begin);
        cut.erase(begin, end == std::wstring::npos ? end : end - begin + 1);
    }
    return cut == without(storeName);
}

} // namespace lumora_config
