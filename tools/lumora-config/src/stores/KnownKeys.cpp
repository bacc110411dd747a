#include "KnownKeys.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

namespace lumora_config {

namespace ConfigKeys = ZelUnified::ConfigKeys;
using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;

namespace {

KeyFacts factsOf(const ConfigKeys::KeyRow& row) {
    KeyFacts facts;
    facts.key = row.name;
    if (row.isRenamed()) {
        facts.oldName = std::wstring(row.oldName);
    }
    facts.sensitive = row.isSensitive();
    facts.provisionable = row.isProvisionable();
    facts.kind = ConfigKeys::describeKind(row.kind);
    facts.permitted = ConfigKeys::describePermittedValues(row);
    for (const auto value : ConfigKeys::getPermittedValues(row)) {
        facts.values.push_back(toString(value));
    }
    facts.rule = row.rule;
    facts.meaning = row.meaning;
    facts.use = row.use;
    return facts;
}

/// `*` is tried with ever longer texts; only the last one needs to be tried again.
bool matchesWildcards(std::wstring_view name, std::wstring_view pattern) {
    std::size_t at = 0;
    std::size_t next = 0;
    std::size_t star = std::wstring_view::npos;
    std::size_t resume = 0;
    while (at < name.size()) {
        if (next < pattern.size() && pattern[next] == L'*') {
            star = next++;
            resume = at;
        } else if (next < pattern.size() && (pattern[next] == L'?' || pattern[next] == name[at])) {
            ++next;
            ++at;
        } else if (star != std::wstring_view::npos) {
            next = star + 1;
            at = ++resume;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', next) == std::wstring_view::npos;
}

} // namespace

std::optional<KeyFacts> findKeyFacts(const std::wstring& key) {
    const auto* const row = ConfigKeys::findKey(key);
    return row == nullptr ? std::nullopt : std::optional(factsOf(*row));
}

std::vector<KeyFacts> findKeys(std::string_view pattern) {
    const auto widePattern = toWideString(std::string(pattern));
    std::vector<KeyFacts> found;
    for (const auto& row : ConfigKeys::keys) {
        if (matchesPattern(row.name, widePattern) || (row.isRenamed() && matchesPattern(row.oldName, widePattern))) {
            found.push_back(factsOf(row));
        }
    }
    return found;
}

std::vector<std::string> listKnownNames() {
    std::vector<std::string> names;
    for (const auto& row : ConfigKeys::keys) {
        names.push_back(toString(row.name));
        if (row.isRenamed()) {
            names.push_back(toString(row.oldName));
        }
    }
    return names;
}

std::string spell(const std::string& key) {
    const auto wide = toWideString(key);
    return ConfigKeys::findKey(wide) == nullptr ? key : toString(ConfigKeys::spellKey(wide));
}

bool matchesPattern(std::wstring_view name, std::wstring_view pattern) {
    const auto folded = KyrCoreUtils::toLowercase(std::wstring(pattern));
    const auto foldedName = KyrCoreUtils::toLowercase(std::wstring(name));
    if (folded.find_first_of(L"*?") == std::wstring::npos) {
        return foldedName.find(folded) != std::wstring::npos;
    }
    return matchesWildcards(foldedName, folded);
}

} // namespace lumora_config
