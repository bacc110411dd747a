#include "ChangedEntries.h"

#include "secure/SecureString.h"

#include <algorithm>

namespace ZelUnified {

namespace {

void assign(ConfigMap::value_type& kept, const ConfigMap::value_type& current) {
    if (kept.second != current.second) {
        zel::SecureString::wipe(kept.second);
        kept.second = current.second;
    }
}

/// Touches only what differs.
void assignAll(ConfigMap& copy, const ConfigMap& table) {
    auto next = copy.begin();
    for (const auto& entry : table) {
        while (next != copy.end() && next->first != entry.first && !copy.key_comp()(entry.first, next->first)) {
            zel::SecureString::wipe(next->second);
            next = copy.erase(next);
        }
        if (next == copy.end() || next->first != entry.first) {
            copy.emplace_hint(next, entry);
            continue;
        }
        assign(*next++, entry);
    }
    for (; next != copy.end(); next = copy.erase(next)) {
        zel::SecureString::wipe(next->second);
    }
}

} // namespace

void ChangedEntries::add(const ConfigMap::value_type& entry) noexcept {
    if (anyDiffers || (count > 0 && entries[count - 1] == &entry)) {
        return;
    }
    if (count == limit) {
        anyDiffers = true;
        return;
    }
    entries[count++] = &entry;
}

bool ChangedEntries::isUpToDate(const ConfigMap& copy, const ConfigMap& table) const {
    if (anyDiffers) {
        return copy == table;
    }
    return std::all_of(entries.begin(), entries.begin() + count, [&](const auto* entry) {
        const auto kept = copy.find(entry->first);
        return kept != copy.end() && *kept == *entry;
    });
}

void ChangedEntries::bringUpToDate(ConfigMap& copy, const ConfigMap& table) {
    if (anyDiffers) {
        assignAll(copy, table);
    } else {
        std::for_each(entries.begin(), entries.begin() + count,
                      [&](const auto* entry) { assign(*copy.insert(*entry).first, *entry); });
    }
    count = 0;
    anyDiffers = false;
}

} // namespace ZelUnified
