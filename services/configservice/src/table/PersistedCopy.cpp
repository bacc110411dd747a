#include "PersistedCopy.h"

#include "ConfigTable.h"
#include "WipedValues.h"

#include <algorithm>

namespace ZelUnified {

namespace {

bool isSame(const ConfigMap::value_type& kept, const ConfigEntry& entry) {
    return kept.first == entry.getKey() && kept.second == entry.getValue();
}

void assign(ConfigMap::value_type& kept, const ConfigEntry& current) {
    if (kept.second != current.getValue()) {
        overwriteValue(kept.second, current.getValue());
    }
}

} // namespace

PersistedCopy::~PersistedCopy() {
    wipeValues(values);
}

void PersistedCopy::noteStored(const ConfigEntry& entry) noexcept {
    if (anyMayDiffer || (count > 0 && named[count - 1] == &entry)) {
        return;
    }
    if (count == limit) {
        anyMayDiffer = true;
        return;
    }
    named[count++] = &entry;
}

bool PersistedCopy::equals(ConfigTable& table) const {
    if (anyMayDiffer) {
        return std::ranges::equal(values, table.list(),
                                  [](const auto& kept, const auto& entry) { return isSame(kept, *entry); });
    }
    return std::all_of(named.begin(), named.begin() + count, [this](const auto* entry) {
        const auto kept = values.find(entry->getKey());
        return kept != values.end() && isSame(*kept, *entry);
    });
}

void PersistedCopy::bringUpToDate(ConfigTable& table) {
    anyMayDiffer ? copyAll(table) : copyNamed();
    count = 0;
    anyMayDiffer = false;
}

void PersistedCopy::copyNamed() {
    std::for_each(named.begin(), named.begin() + count, [this](const auto* entry) {
        const auto kept = values.find(entry->getKey());
        if (kept == values.end()) {
            values.emplace(entry->getKey(), entry->getValue());
        } else {
            assign(*kept, *entry);
        }
    });
}

/// Changes only the entries that differ.
void PersistedCopy::copyAll(ConfigTable& table) {
    auto next = values.begin();
    for (const auto& entry : table.list()) {
        const auto key = entry->getKey();
        while (next != values.end() && next->first != key && !values.key_comp()(key, next->first)) {
            zel::SecureString::wipe(next->second);
            next = values.erase(next);
        }
        if (next == values.end() || next->first != key) {
            values.emplace_hint(next, key, entry->getValue());
            continue;
        }
        assign(*next++, *entry);
    }
    for (; next != values.end(); next = values.erase(next)) {
        zel::SecureString::wipe(next->second);
    }
}

} // namespace ZelUnified
