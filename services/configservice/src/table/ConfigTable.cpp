#include "ConfigTable.h"

#include "WipedValues.h"

#include <algorithm>

namespace ZelUnified {

namespace {

// A small table needs little memory; the blocks of a large one grow.
constexpr std::size_t firstBlock = 1024;

bool isBefore(const ConfigEntry::Owner& a, const ConfigEntry::Owner& b) {
    return caseInsensitiveMapComparator()(a->getKey(), b->getKey());
}

} // namespace

ConfigTable::ConfigTable(ConfigMap values) {
    replace(std::move(values));
}

void ConfigTable::store(const std::wstring& key, std::wstring_view value) {
    const FoldedKey folded(key);
    if (auto* entry = index.find(folded)) {
        entry->setValue(value);
        return;
    }
    insert(folded, ConfigEntry::make(key, value));
}

bool ConfigTable::load(const FoldedKey& key, std::wstring_view value) {
    if (index.find(key) != nullptr) {
        return false;
    }
    insert(key, ConfigEntry::make(key.getFolded(), value, *arena));
    return true;
}

std::unique_ptr<ConfigTable::Arena> ConfigTable::makeArena() {
    return std::make_unique<Arena>(firstBlock);
}

void ConfigTable::insert(const FoldedKey& key, ConfigEntry::Owner added) {
    index.reserveOne();
    reserveFilter(entries.size() + 1);
    entries.push_back(std::move(added));
    // Documents are written in order, so most entries read from them are already in order.
    if (ordered + 1 == entries.size() && (ordered == 0 || isBefore(entries[ordered - 1], entries[ordered]))) {
        ++ordered;
    }
    filter.add(key);
    index.insert(key, *entries.back());
}

bool ConfigTable::remove(const std::wstring& key) {
    const FoldedKey folded(key);
    const auto* const removed = index.find(folded);
    if (removed == nullptr) {
        return false;
    }
    index.erase(folded); // before the entry and its key are destroyed
    const auto position =
        std::ranges::find_if(entries, [removed](const auto& entry) { return entry.get() == removed; });
    if (static_cast<std::size_t>(position - entries.begin()) < ordered) {
        --ordered;
    }
    entries.erase(position);
    return true;
}

void ConfigTable::clear() noexcept {
    index.clear();
    entries.clear();
    arena->release();
    ordered = 0;
}

void ConfigTable::replace(ConfigMap values) {
    const ValuesWiper wiper(values);
    reserveFilter(values.size()); // reads the hashes of the old index
    auto nextArena = makeArena();
    std::vector<ConfigEntry::Owner> next;
    KeyIndex<ConfigEntry, KeyOfConfigEntry> nextIndex;
    next.reserve(values.size());
    nextIndex.reserve(values.size());
    for (auto& [key, value] : values) {
        const FoldedKey folded(key);
        next.push_back(ConfigEntry::make(key, value, *nextArena));
        filter.add(folded);
        nextIndex.insert(folded, *next.back());
    }
    arena.swap(nextArena); // the old entries are destroyed before their memory
    entries.swap(next);
    index.swap(nextIndex);
    ordered = entries.size();
}

const std::vector<ConfigEntry::Owner>& ConfigTable::list() {
    if (ordered < entries.size()) {
        const auto unsorted = entries.begin() + static_cast<std::ptrdiff_t>(ordered);
        std::sort(unsorted, entries.end(), isBefore);
        std::inplace_merge(entries.begin(), unsorted, entries.end(), isBefore);
        ordered = entries.size();
    }
    return entries;
}

std::vector<std::wstring> ConfigTable::getKeys() {
    std::vector<std::wstring> keys;
    keys.reserve(entries.size());
    for (const auto& entry : list()) {
        keys.emplace_back(entry->getKey());
    }
    return keys;
}

KeyList ConfigTable::listKeys() {
    KeyList keys;
    keys.reserve(entries.size());
    for (const auto& entry : list()) {
        keys.add(entry->getKey());
    }
    return keys;
}

void ConfigTable::reserveFilter(std::size_t keys) {
    filter.reserve(keys, [this](auto add) { index.forEachHash(add); });
}

} // namespace ZelUnified
