#include "SecretMask.h"

#include <ConfigCatalogue.h>

#include <algorithm>
#include <utility>

namespace lumora_config {

using ZelUnified::ConfigKeys::valueHidden;

SecretMask::SecretMask(std::shared_ptr<ZelUnified::ConfigFeatureSet> adapter, bool showAll)
    : featureSet(std::move(adapter)), showSecrets(showAll) {}

std::wstring SecretMask::show(const std::wstring& key, const std::wstring& value) const {
    return showSecrets || !isSensitive(key) ? value : std::wstring(valueHidden);
}

void SecretMask::hide(Explanation& explanation) const {
    explanation.sensitive = isSensitive(explanation.key);
    if (showSecrets || !explanation.sensitive) {
        return;
    }
    for (auto* reading : {&explanation.inForce, &explanation.administrators}) {
        if (*reading) {
            (*reading)->value = valueHidden;
        }
    }
    for (auto& opinion : explanation.opinions) {
        for (auto& holding : opinion.holdings) {
            holding.value = valueHidden;
        }
    }
    explanation.record.originalValue = valueHidden;
}

void SecretMask::hide(std::vector<ListedValue>& values) const {
    for (auto& listed : values) {
        listed.value = show(listed.key, listed.value);
    }
}

bool SecretMask::isSensitive(const std::wstring& key) const {
    const auto names = ZelUnified::ConfigKeys::getKeyNames(key).getAll();
    return featureSet->isKeySensitive(key) ||
           std::ranges::any_of(names, [this](const std::wstring& name) { return featureSet->isKeySensitive(name); });
}

} // namespace lumora_config
