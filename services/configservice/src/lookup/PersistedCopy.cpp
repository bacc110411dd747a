#include "PersistedCopy.h"

#include "WipedValues.h"

#include <algorithm>

namespace ZelUnified {

namespace {

void assign(ConfigMap::value_type& kept, const ConfigMap::value_type& current) {
    if (kept.second != current.second) {
        overwriteValue(kept.second, current.second);
    }
}

} // namespace

PersistedCopy::~PersistedCopy() {
    wipeValues(values);
}

void PersistedCopy::noteStored(const ConfigMap::value_type& entry) noexcept {
    if (anyMayDiffer || (count > 0 && named[count - 1] == &entry)) {
        return;
    }
    if (count == limit) {
        anyMayDiffer = true;
        return;
    }
    named[count++] = &entry;
}

bool PersistedCopy::equals(const ConfigMap& table) const {
    if (anyMayDiffer) {
        return values == table;
    }
    return std::all_of(named.begin(), named.begin() + count, [this](const auto* entry) {
        const auto kept = values.find(entry->first);
        return kept != values.end() && *kept == *entry;
    });
}

void PersistedCopy::bringUpToDate(const ConfigMap& table) {
    anyMayDiffer ? copyAll(table) : copyNamed();
    count = 0;
    anyMayDiffer = false;
}

void PersistedCopy::copyNamed() {
    std::for_each(named.begin(), named.begin() + count,
                  [this](const auto* entry) { assign(*values.insert(*entry).first, *entry); });
}

/// Touches only what differs.
void PersistedCopy::copyAll(const ConfigMap& table) {
    auto next = values.begin();
    for (const auto& entry : table) {
        while (next != values.end() && next->first != entry.first && !values.key_comp()(entry.first, next->first)) {
            zel::SecureString::wipe(next->second);
            next = values.erase(next);
        }
        if (next == values.end() || next->first != entry.first) {
            values.emplace_hint(next, entry);
            continue;
        }
        assign(*next++, entry);
    }
    for (; next != values.end(); next = values.erase(next)) {
        zel::SecureString::wipe(next->second);
    }
}

} // namespace ZelUnified
