#pragma once

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// What the configuration system knows about each key, generated from ConfigKeys.def. Everything here is constant and
/// inline, so any thread of any library or program may use it without loading the plug-in. A key that is not in the
/// catalogue is an ordinary key: the chain accepts any name.
namespace ZelUnified::ConfigKeys {

/// The values that a key may have.
enum class KeyKind {
    Text,         ///< Any text.
    ExactBoolean, ///< "true" or "false", ignoring case. No other spelling is known.
    Boolean,      ///< A word that toBool() reads as true, or the corresponding word for false.
    Enumeration,  ///< One of `KeyRow::values`.
    List,         ///< Entries NAME:PRIORITY, each followed by a semicolon.
};

/// The place of a row that follows all numbered rows. Rows with the same place are in the order of the catalogue.
inline constexpr int atEnd = 99;

/// The facts about one key.
struct KeyRow {
    std::wstring_view name;                      ///< In the spelling that is shown and written; the new name.
    std::wstring_view oldName{};                 ///< Empty if the key was never renamed.
    int sensitive = 0;                           ///< The place in `sensitiveKeys`; 0 if the key is not in it.
    bool markedByService = false;                ///< The service that reads the key marks it as sensitive.
    int provisioning = 0;                        ///< The place in `provisioningKeys`; 0 if a URL cannot set the key.
    KeyKind kind = KeyKind::Text;                ///< The values that the key may have.
    std::span<const std::wstring_view> values{}; ///< The values of an enumeration.
    std::string_view rule{};                     ///< How the code reads the value; empty for most keys.
    std::string_view meaning{};                  ///< One sentence.
    std::string_view use{}; ///< What reads or derives the key; empty if only other services use it.

    constexpr bool isSensitive() const noexcept { return sensitive != 0 || markedByService; }
    constexpr bool isRenamed() const noexcept { return !oldName.empty(); }
    constexpr bool isProvisionable() const noexcept { return provisioning != 0; }
};

/// The words of a boolean. An exact boolean is one of the first two; toBool() knows all words for true.
inline constexpr std::array<std::wstring_view, 8> booleanWords{L"true", L"false", L"1",  L"0",
                                                               L"yes",  L"no",    L"on", L"off"};
/// The values of calendarintegrationtype.
inline constexpr std::array<std::wstring_view, 3> calendarIntegrationTypes{L"0", L"1", L"2"};

/// All keys, in the order of the catalogue.
inline constexpr auto keys = std::to_array<KeyRow>({
#define LUMORA_KEY(constant, spelling, ...) {.name = constant, __VA_ARGS__},
#include <ConfigKeys.def>
});

/// A name in the character width in which it is used.
using CatalogueEntry = std::variant<std::wstring_view, std::string_view>;

/// All names in the order of the catalogue: keys, old names of keys that have a constant, store names, file names and
/// other texts.
inline constexpr auto catalogue = std::to_array<CatalogueEntry>({
#define LUMORA_KEY(constant, ...) constant,
#define LUMORA_OLD_NAME(constant, ...) constant,
#define LUMORA_NAME(constant, ...) constant,
#include <ConfigKeys.def>
});

/// The facts about a name that is not a key.
struct NameRow {
    CatalogueEntry text;
    std::string_view meaning; ///< One sentence.
    std::string_view use;     ///< What uses the name; empty if only other services do.
};

/// All names that are not keys, in the order of the catalogue.
inline constexpr auto names = std::to_array<NameRow>({
#define LUMORA_NAME(constant, text, meaning, use) {constant, meaning, use},
#include <ConfigKeys.def>
});

/// Returns the rows whose member `place` is not 0, in the order of their places.
template <int KeyRow::*place>
consteval auto listByPlace() {
    constexpr auto isListed = [](const KeyRow& row) { return row.*place != 0; };
    std::array<const KeyRow*, static_cast<std::size_t>(std::ranges::count_if(keys, isListed))> rows{};
    auto next = rows.begin();
    for (const auto& row : keys) {
        if (isListed(row)) {
            *next++ = &row;
        }
    }
    std::ranges::sort(rows, {}, [](const KeyRow* row) { return std::pair(row->*place, row); });
    return rows;
}

/// The keys that are marked as sensitive at the start, in this order. Others are marked at run time, by the service
/// that reads them (`KeyRow::markedByService`) or because a document says so, so ask ConfigFeatureSet::isKeySensitive()
/// before you show a value.
inline constexpr auto sensitiveKeys = listByPlace<&KeyRow::sensitive>();
/// The keys that a provisioning URL may set.
inline constexpr auto provisioningKeys = listByPlace<&KeyRow::provisioning>();

/// Returns the row of the key with this new or old name (case-insensitive), or null if the catalogue does not contain
/// it.
inline const KeyRow* findKey(std::wstring_view name) noexcept {
    const auto found = std::ranges::find_if(keys, [name](const KeyRow& row) {
        return KyrCoreUtils::caseInsensitiveStringEquals(row.name, name) ||
               (row.isRenamed() && KyrCoreUtils::caseInsensitiveStringEquals(row.oldName, name));
    });
    return found == keys.end() ? nullptr : &*found;
}

/// Returns the key in the spelling of the catalogue; an old name remains an old name. Returns an unknown key unchanged,
/// as a view of `key`.
inline std::wstring_view spellKey(std::wstring_view key) noexcept {
    const auto* const row = findKey(key);
    if (row == nullptr) {
        return key;
    }
    return KyrCoreUtils::caseInsensitiveStringEquals(row->name, key) ? row->name : row->oldName;
}

/// The names under which stores may contain a key.
struct KeyNames {
    std::wstring newName;                ///< The requested name itself if the key was never renamed.
    std::optional<std::wstring> oldName; ///< Empty if the key was never renamed.
    bool isRequestedByOldName = false;

    /// Returns the names in the order in which a lookup tries them.
    std::vector<std::wstring> getAll() const { return oldName ? std::vector{newName, *oldName} : std::vector{newName}; }
};

/// Returns the names of the key with this new or old name (case-insensitive).
inline KeyNames getKeyNames(std::wstring_view key) {
    const auto* const row = findKey(key);
    if (row == nullptr || !row->isRenamed()) {
        return {std::wstring(key), std::nullopt, false};
    }
    return {std::wstring(row->name), std::wstring(row->oldName),
            KyrCoreUtils::caseInsensitiveStringEquals(row->oldName, key)};
}

/// Returns the names of `sensitiveKeys`, old names included: a log line shows the name that was requested.
inline std::vector<std::wstring> listSensitiveNames() {
    std::vector<std::wstring> listed;
    for (const auto* const row : sensitiveKeys) {
        std::ranges::move(getKeyNames(row->name).getAll(), std::back_inserter(listed));
    }
    return listed;
}

/// Returns "text", "boolean", "enumeration" or "list".
constexpr std::string_view describeKind(KeyKind kind) noexcept {
    switch (kind) {
    case KeyKind::ExactBoolean:
    case KeyKind::Boolean:
        return "boolean";
    case KeyKind::Enumeration:
        return "enumeration";
    case KeyKind::List:
        return "list";
    case KeyKind::Text:
        break;
    }
    return "text";
}

/// Returns the values that the kind of the key permits, ignoring case; empty for texts and lists, which have no fixed
/// values.
constexpr std::span<const std::wstring_view> getPermittedValues(const KeyRow& row) noexcept {
    switch (row.kind) {
    case KeyKind::ExactBoolean:
        return std::span(booleanWords).first<2>();
    case KeyKind::Boolean:
        return booleanWords;
    case KeyKind::Enumeration:
    case KeyKind::List:
    case KeyKind::Text:
        break;
    }
    return row.values;
}

/// Returns true if `value` is a list of entries NAME:PRIORITY, each followed by a semicolon, which the last may lack.
inline bool isStoreList(std::wstring_view value) {
    std::vector<std::wstring> entries;
    std::vector<std::wstring> parts;
    KyrCoreUtils::split(value, entries, L";");
    if (!entries.empty() && entries.back().empty()) {
        entries.pop_back();
    }
    return std::ranges::all_of(entries, [&parts](const std::wstring& entry) {
        KyrCoreUtils::split(entry, parts, L":");
        return parts.size() == 2 && !parts.front().empty() &&
               KyrCoreUtils::toInt(parts.back(), 0) == KyrCoreUtils::toInt(parts.back(), 1);
    });
}

/// Returns true if the kind of the key permits `value`. The service stores and returns other values, too: they are
/// without effect, or have another effect than the user expects.
inline bool permits(const KeyRow& row, std::wstring_view value) {
    if (row.kind == KeyKind::Text) {
        return true;
    }
    if (row.kind == KeyKind::List) {
        return isStoreList(value);
    }
    // Only toBool() ignores white space around the value.
    const std::wstring word = row.kind == KeyKind::Boolean ? KyrCoreUtils::trim(value) : std::wstring(value);
    return std::ranges::any_of(getPermittedValues(row), [&word](std::wstring_view permitted) {
        return KyrCoreUtils::caseInsensitiveStringEquals(permitted, word);
    });
}

/// Returns in words what the kind of the key permits, for example: "true" or "false".
inline std::string describePermittedValues(const KeyRow& row) {
    if (row.kind == KeyKind::Text) {
        return "any text";
    }
    if (row.kind == KeyKind::List) {
        return "entries NAME:PRIORITY; for example PresenceConfigStore:31;TftpStore:41;";
    }
    const auto values = getPermittedValues(row);
    std::string text;
    for (std::size_t place = 0; place < values.size(); ++place) {
        if (place != 0) {
            text += place + 1 == values.size() ? " or " : ", ";
        }
        text += '"' + KyrCoreUtils::toString(values[place]) + '"';
    }
    return text;
}

} // namespace ZelUnified::ConfigKeys
