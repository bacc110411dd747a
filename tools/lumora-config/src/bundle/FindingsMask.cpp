#include "FindingsMask.h"

#include <ConfigCatalogue.h>

#include <optional>
#include <string>

namespace lumora_config {

namespace {

template <class Text>
void apply(const BundleMask& mask, Text& text) {
    text = mask.mask(text);
}

void applyToKey(const BundleMask& mask, std::wstring& key) {
    if (ZelUnified::ConfigKeys::findKey(key) == nullptr) {
        apply(mask, key);
    }
}

void apply(const BundleMask& mask, Origin& origin) {
    apply(mask, origin.file);
    apply(mask, origin.how);
}

void apply(const BundleMask& mask, std::optional<Reading>& reading) {
    if (reading) {
        apply(mask, reading->value);
        apply(mask, reading->storeName);
        apply(mask, reading->origin);
    }
}

void apply(const BundleMask& mask, Explanation& key) {
    applyToKey(mask, key.key);
    applyToKey(mask, key.newName);
    apply(mask, key.inForce);
    apply(mask, key.administrators);
    apply(mask, key.record.originalValue);
    apply(mask, key.record.originalStoreName);
    for (auto& opinion : key.opinions) {
        apply(mask, opinion.store.name);
        for (auto& holding : opinion.holdings) {
            applyToKey(mask, holding.name);
            apply(mask, holding.value);
            apply(mask, holding.origin);
        }
    }
}

} // namespace

void maskFindings(ChainFindings& findings, const BundleMask& mask) {
    for (auto& store : findings.stores) {
        apply(mask, store.name);
    }
    for (auto& key : findings.keys) {
        apply(mask, key);
    }
    for (auto& item : findings.health.items) {
        apply(mask, item.path);
        apply(mask, item.state);
    }
    apply(mask, findings.profile);
    apply(mask, findings.host);
}

void maskFindings(std::vector<ListedValue>& values, const BundleMask& mask) {
    for (auto& listed : values) {
        applyToKey(mask, listed.key);
        apply(mask, listed.value);
        apply(mask, listed.storeName);
    }
}

} // namespace lumora_config
