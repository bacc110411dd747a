#pragma once

#include "FoldedKey.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace ZelUnified {

/// Tells without a lock that a table does not hold a key. Most tables of a walk don't, and to lock each of them costs
/// more than to search it. The answer to a key that is held is always yes, to one that isn't mostly no.
///
/// Any thread asks, and sees what others added in one order, as under locks; its owner adds keys one thread at a time.
/// What was added stays, also when the key is removed: a reader that saw it gone could miss a key that was held all the
/// while. So a table whose keys are exchanged many times fills it until it no longer says no; answers stay right.
class KeyFilter {
public:
    bool mayHold(const FoldedKey& key) const noexcept {
        const Bits* bits = current.load();
        return bits != nullptr && bits->contains(key.getHash());
    }

    /// Makes room for that many keys in all. Where it has to grow, `addAll` is given a function for the hashes of those
    /// that are held; readers see the new size once all are in it.
    template <class AddAll>
    void reserve(std::size_t keys, AddAll addAll) {
        if (!made.empty() && keys * fewestBitsForKey <= made.back()->size()) {
            return;
        }
        made.push_back(std::make_unique<Bits>(std::max(keys * bitsForKey, smallest)));
        addAll([bits = made.back().get()](std::uint32_t hash) { bits->add(hash); });
        current.store(made.back().get());
    }

    /// While there is room.
    void add(const FoldedKey& key) noexcept { made.back()->add(key.getHash()); }

private:
    static constexpr std::size_t bitsForKey = 24;
    static constexpr std::size_t fewestBitsForKey = 12; ///< With fewer it would rarely say no.
    static constexpr std::size_t smallest = 256;

    class Bits {
    public:
        explicit Bits(std::size_t count) : words((count + bitsInWord - 1) / bitsInWord) {}

        std::size_t size() const noexcept { return words.size() * bitsInWord; }
        bool contains(std::uint32_t hash) const noexcept {
            const std::size_t bit = bitOf(hash);
            return (words[bit / bitsInWord].load() >> (bit % bitsInWord) & 1) != 0;
        }
        void add(std::uint32_t hash) noexcept {
            const std::size_t bit = bitOf(hash);
            words[bit / bitsInWord].fetch_or(std::uint32_t{1} << (bit % bitsInWord));
        }

    private:
        static constexpr std::size_t bitsInWord = 32;

        std::size_t bitOf(std::uint32_t hash) const noexcept {
            return static_cast<std::size_t>((std::uint64_t{hash} * size()) >> 32);
        }

        std::vector<std::atomic<std::uint32_t>> words;
    };

    std::atomic<const Bits*> current = nullptr;
    std::vector<std::unique_ptr<Bits>> made; ///< The last one counts; others may still be looked at.
};

} // namespace ZelUnified
