#include "PolicyCheck.h"

#include "ClientPolicy.h"
#include "ClosestNames.h"
#include "KnownKeys.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

#include <algorithm>

namespace lumora_config {

using KyrCoreUtils::toString;
using zel::registry::RegistryTextEntry;
using zel::registry::RegistryTextSection;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

// A suggestion compares the key with the whole catalogue, which takes too long for a file of many unknown keys.
constexpr std::size_t mostSuggestions = 200;

std::vector<std::string> componentsOf(std::wstring_view path) {
    std::vector<std::string> components;
    KyrCoreUtils::split(toString(path), components, "\\");
    return components;
}

/// Returns true if the path contains at least two of the three components that name the product, in their order, each
/// spelled at least almost like it.
bool resemblesPolicyKey(std::wstring_view path) {
    constexpr std::ptrdiff_t namingComponents = 3;
    constexpr int enough = 2;
    const auto wanted = componentsOf(getPolicyKey());
    const auto components = componentsOf(path);
    auto next = components.begin();
    int found = 0;
    for (auto name = wanted.end() - namingComponents; name != wanted.end(); ++name) {
        const auto similar = std::find_if(next, components.end(), [&](const std::string& component) {
            return !closestNames(component, {*name}).empty();
        });
        if (similar != components.end()) {
            next = similar + 1;
            ++found;
        }
    }
    return found >= enough;
}

bool setsValues(const RegistryTextSection& section) {
    return !section.deletion && std::ranges::any_of(section.entries, [](const auto& entry) { return !entry.deletion; });
}

} // namespace

std::vector<PolicyRemark> PolicyCheck::examine(std::span<const RegistryTextSection> sections) {
    PolicyCheck check;
    for (const auto& section : sections) {
        check.examine(section);
    }
    return std::move(check.remarks);
}

PolicyCheck::PolicyCheck() : knownNames(listKnownNames()) {}

void PolicyCheck::examine(const RegistryTextSection& section) {
    if (!setsValues(section)) {
        return;
    }
    if (!isInPolicy(section.path)) {
        if (!resemblesPolicyKey(section.path)) {
            return; // a key of another program
        }
        add(section.firstLine,
            "not the client's policy key, so its values are never in force; did you mean 'HKEY_CURRENT_USER\\" +
                toString(getPolicyKey()) + "'?");
    }
    for (const auto& entry : section.entries) {
        if (!entry.deletion) {
            examine(entry);
        }
    }
}

void PolicyCheck::examine(const RegistryTextEntry& entry) {
    const auto& name = entry.value.name;
    const auto key = name.empty() ? std::string("@") : toString(name);
    if (!isReadByClient(entry.value.type)) {
        add(entry.line, "the value of the key '" + key + "' has a type that the client does not read");
        return;
    }
    const auto* const row = ConfigKeys::findKey(name);
    if (row == nullptr) {
        const auto suggestion = suggest(key);
        add(entry.line, "the key '" + key + "' is unknown" + suggestion,
            suggestion.empty() ? PolicyRemark::Kind::UnknownKey : PolicyRemark::Kind::MistypedKey);
    } else if (!ConfigKeys::permits(*row, getPolicyText(entry.value))) {
        add(entry.line, "the value of the key '" + toString(ConfigKeys::spellKey(name)) + "' must be " +
                            ConfigKeys::describePermittedValues(*row));
    }
}

std::string PolicyCheck::suggest(const std::string& key) {
    if (suggestionCount++ >= mostSuggestions) {
        return {};
    }
    return lumora_config::suggest(key, knownNames);
}

void PolicyCheck::add(std::size_t line, const std::string& text, PolicyRemark::Kind kind) {
    remarks.push_back({line, text, kind});
}

} // namespace lumora_config
