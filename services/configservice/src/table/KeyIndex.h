#pragma once

#include "FoldedKey.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {

/// The key of an entry of an ordered map or set.
struct KeyOfEntry {
    const std::wstring& operator()(const std::wstring& entry) const noexcept { return entry; }
    template <class Value>
    const std::wstring& operator()(const std::pair<const std::wstring, Value>& entry) const noexcept {
        return entry.first;
    }
};

/// Finds entries by the hash of their keys. It stands beside the container that owns them and refers to them, so they
/// must stay where they are and keep their keys. Takes 16 to 24 bytes for an entry.
///
/// Open addressing: an entry stands at the place that its hash gives, or as near behind as there was room, so a search
/// ends at the first free place. An erased entry leaves no mark: those behind it move up.
template <class Entry, class KeyOf = KeyOfEntry>
class KeyIndex {
public:
    /// Null when no entry bears the key.
    Entry* find(const FoldedKey& key) const noexcept {
        return slots.empty() ? nullptr : slots[placeOf(key)].getEntry();
    }

    /// Makes room for one more entry. What can fail stands here, so that container and index stay of one mind.
    void reserveOne() { reserve(count + 1); }

    /// Makes room for so many entries in all.
    void reserve(std::size_t entries) {
        if (entries * 4 > slots.size() * 3) {
            resize(std::max({smallest, entries + entries / 3 + 1, slots.size() + slots.size() / 2}));
        }
    }

    /// After reserve() or reserveOne(). The key must not be in the index yet.
    void insert(const FoldedKey& key, Entry& entry) noexcept {
        place({key.getHash(), &entry});
        ++count;
    }

    /// Does nothing when no entry bears the key.
    void erase(const FoldedKey& key) noexcept {
        if (find(key) == nullptr) {
            return;
        }
        std::size_t hole = placeOf(key);
        for (std::size_t i = next(hole); !slots[i].isFree(); i = next(i)) {
            // An entry whose own place lies between the hole and itself would not be found in the hole.
            const std::size_t home = homeOf(slots[i].mark);
            const bool mayMove = hole <= i ? (home <= hole || home > i) : (home <= hole && home > i);
            if (mayMove) {
                slots[hole] = slots[i];
                hole = i;
            }
        }
        slots[hole] = {};
        --count;
    }

    void clear() noexcept {
        slots.clear();
        count = 0;
    }

    void swap(KeyIndex& other) noexcept {
        slots.swap(other.slots);
        std::swap(count, other.count);
    }

    /// The hashes of all keys, in no order.
    template <class Use>
    void forEachHash(Use use) const {
        for (const auto& slot : slots) {
            if (!slot.isFree()) {
                use(slot.mark);
            }
        }
    }

private:
    static constexpr std::size_t smallest = 8;

    /// The pointer lies in bytes of its own, or four bytes in each slot would be padding.
    struct Slot {
        Slot() = default;
        Slot(std::uint32_t hashMark, Entry* entry) noexcept : mark(hashMark) {
            std::memcpy(pointer.data(), &entry, pointer.size());
        }

        bool isFree() const noexcept { return mark == 0; }
        Entry* getEntry() const noexcept {
            Entry* entry = nullptr;
            std::memcpy(&entry, pointer.data(), pointer.size());
            return entry;
        }

        std::uint32_t mark = 0; ///< The key's hash; 0 for a free slot.
        alignas(std::uint32_t) std::array<std::byte, sizeof(void*)> pointer{};
    };

    /// Keeps the order of the hashes, so that any number of places will do, and the table grows by half only.
    std::size_t homeOf(std::uint32_t mark) const noexcept {
        return static_cast<std::size_t>((static_cast<std::uint64_t>(mark) * slots.size()) >> 32);
    }

    std::size_t next(std::size_t place) const noexcept { return place + 1 == slots.size() ? 0 : place + 1; }

    /// Where the key's entry stands, or the free place behind its last candidate.
    std::size_t placeOf(const FoldedKey& key) const noexcept {
        const std::uint32_t mark = key.getHash();
        std::size_t at = homeOf(mark);
        while (!slots[at].isFree() && !(slots[at].mark == mark && key.names(KeyOf{}(*slots[at].getEntry())))) {
            at = next(at);
        }
        return at;
    }

    void place(const Slot& slot) noexcept {
        std::size_t at = homeOf(slot.mark);
        while (!slots[at].isFree()) {
            at = next(at);
        }
        slots[at] = slot;
    }

    void resize(std::size_t places) {
        std::vector<Slot> old(places);
        slots.swap(old);
        for (const auto& slot : old) {
            if (!slot.isFree()) {
                place(slot);
            }
        }
    }

    std::vector<Slot> slots;
    std::size_t count = 0;
};

} // namespace ZelUnified
