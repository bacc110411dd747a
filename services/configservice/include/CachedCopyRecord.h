#pragma once

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZelUnified {

/// The record of the cached copies of stores: the text of "PrimaryConfigStores", which contains an entry
/// `NAME:PRIORITY;` for each copy. For programs and services that remove a store without changing the entries of
/// others. Everything is inline, so it needs no plug-in. Any thread, one object at a time.
class CachedCopyRecord {
public:
    explicit CachedCopyRecord(std::wstring recordText) : text(std::move(recordText)) {}

    /// The entry of a store, found by case-insensitive name. If entries repeat, the last priority wins.
    struct Entry {
        std::wstring name;
        std::wstring priority;
    };
    std::optional<Entry> find(const std::wstring& storeName) const {
        std::optional<Entry> found;
        for (const auto& piece : splitEntries()) {
            auto entry = toEntry(piece);
            if (isEntryOf(entry, storeName)) {
                // Like the service, keeps the first spelling of a name and the last priority.
                found = Entry{found ? found->name : entry->name, entry->priority};
            }
        }
        return found;
    }

    /// Returns the text without the entries of this store. All other parts are unchanged, including malformed ones.
    std::wstring without(const std::wstring& storeName) const {
        std::wstring rest;
        for (const auto& piece : splitEntries()) {
            if (!isEntryOf(toEntry(piece), storeName)) {
                rest += piece;
            }
        }
        return rest;
    }

    /// Returns true if the service's way of removing the store gives the same text as without(). The service erases the
    /// entry at the first occurrence of the name, which may be inside the entry of another store.
    bool canBeErasedByService(const std::wstring& storeName) const {
        auto cut = text;
        const auto lowered = KyrCoreUtils::toLowercase(text);
        if (const auto begin = lowered.find(KyrCoreUtils::toLowercase(storeName)); begin != std::wstring::npos) {
            const auto end = lowered.find(L';', begin);
            cut.erase(begin, end == std::wstring::npos ? end : end - begin + 1);
        }
        return cut == without(storeName);
    }

    const std::wstring& getText() const { return text; }

    /// Returns the path of the cached copy of this store. Returns nothing if the name would lead out of the folder of
    /// the copies: such a store has no copy.
    static std::optional<std::string> findCopyPath(const std::string& configDirectory, const std::string& storeName) {
        if (hasParentComponent(storeName)) {
            return std::nullopt;
        }
        const auto separator = KyrCoreUtils::FileUtils::FileSeparator();
        return configDirectory + separator + std::string(ConfigKeys::cacheDirectory) + separator + "cached" +
               storeName + ".dat";
    }

private:
    /// Returns the parts of the record, each with its closing ";".
    std::vector<std::wstring> splitEntries() const {
        std::vector<std::wstring> pieces;
        for (std::size_t begin = 0; begin < text.size();) {
            const auto end = text.find(L';', begin);
            const auto length = end == std::wstring::npos ? text.size() - begin : end - begin + 1;
            pieces.push_back(text.substr(begin, length));
            begin += length;
        }
        return pieces;
    }

    static std::optional<Entry> toEntry(std::wstring piece) {
        if (piece.ends_with(L';')) {
            piece.pop_back();
        }
        std::vector<std::wstring> parts;
        KyrCoreUtils::split(piece, parts, L":");
        if (parts.size() != 2) {
            return std::nullopt;
        }
        return Entry{parts.front(), parts.back()};
    }

    static bool isEntryOf(const std::optional<Entry>& entry, const std::wstring& storeName) {
        return entry && KyrCoreUtils::caseInsensitiveStringEquals(entry->name, storeName);
    }

    /// Accepts the separators of every platform because platforms may share the folder.
    static bool hasParentComponent(std::string_view name) {
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

    std::wstring text;
};

} // namespace ZelUnified
