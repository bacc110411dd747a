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
    if (pattern.find_first_of(L"*?") == std::wstring_view::npos) {
        return KyrCoreUtils::caseInsensitiveFind(name, pattern) >= 0;
    }
    return KyrCoreUtils::matchesWildcards(name, pattern);
}

} // namespace lumora_config
