#include "SettingsComparison.h"

#include <kyr/StringUtils.h>

#include <map>

namespace lumora_config {

namespace {

struct IgnoringCase {
    bool operator()(const std::wstring& left, const std::wstring& right) const {
        return KyrCoreUtils::caseInsensitiveStringCompare(left, right) < 0;
    }
};

std::map<std::wstring, Difference, IgnoringCase> pairByKey(const SettingsDump& left, const SettingsDump& right) {
    std::map<std::wstring, Difference, IgnoringCase> pairs;
    for (const auto& setting : left.settings) {
        pairs.try_emplace(setting.key, Difference{setting.key, setting, std::nullopt});
    }
    for (const auto& setting : right.settings) {
        auto& pair = pairs.try_emplace(setting.key, Difference{setting.key, std::nullopt, std::nullopt}).first->second;
        if (!pair.right) {
            pair.right = setting;
        }
    }
    return pairs;
}

std::string describeSide(const SettingsDump& side) {
    return side.name.empty() ? side.source : side.name;
}

bool isUnknown(const Difference& pair) {
    return pair.left && pair.right && (pair.left->hidden || pair.right->hidden);
}

bool isEqual(const Difference& pair, Compared compared) {
    return pair.left && pair.right && pair.left->value == pair.right->value &&
           (compared == Compared::Values ||
            KyrCoreUtils::caseInsensitiveStringEquals(pair.left->storeName, pair.right->storeName));
}

} // namespace

Comparison compareSettings(const SettingsDump& left, const SettingsDump& right, Compared compared) {
    Comparison comparison{describeSide(left), describeSide(right), {}};
    for (auto& [key, pair] : pairByKey(left, right)) {
        if (isUnknown(pair)) {
            ++comparison.unknown;
        } else if (isEqual(pair, compared)) {
            ++comparison.equal;
        } else {
            comparison.differences.push_back(std::move(pair));
        }
    }
    return comparison;
}

void hideSecrets(Comparison& comparison) {
    for (auto& difference : comparison.differences) {
        const bool isSensitive =
            (difference.left && difference.left->sensitive) || (difference.right && difference.right->sensitive);
        for (auto* side : {&difference.left, &difference.right}) {
            if (isSensitive && *side) {
                (*side)->sensitive = true;
                (*side)->hidden = true;
                (*side)->value.clear();
            }
        }
    }
}

} // namespace lumora_config
