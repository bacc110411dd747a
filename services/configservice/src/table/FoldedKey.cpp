#include "FoldedKey.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <random>

namespace ZelUnified {

namespace {

using Unit = std::uint32_t; // wchar_t may be signed

constexpr Unit firstBeyondAscii = 0x80;

constexpr Unit unitOf(wchar_t character) noexcept {
    return static_cast<Unit>(character);
}

/// Branch-free, because keys mix upper and lower case.
constexpr Unit toLowerAscii(Unit unit) noexcept {
    const bool isUpper = unit - 'A' <= 'Z' - 'A';
    return unit | (static_cast<Unit>(isUpper) << 5);
}

/// The start value differs in each process, so that nobody can prepare a document whose keys all have the same hash.
std::uint64_t seedOfProcess() {
    static const std::uint64_t seed = [] {
        std::random_device device;
        return (std::uint64_t{device()} << 32) | device();
    }();
    return seed;
}

/// The units that are folded and hashed in one step.
using Block = std::uint64_t;
constexpr std::size_t unitsInBlock = sizeof(Block) / sizeof(wchar_t);

constexpr Block inEachUnit(Block number) noexcept {
    Block block = 0;
    for (std::size_t i = 0; i < unitsInBlock; ++i) {
        block = block << (8 * sizeof(wchar_t)) | number;
    }
    return block;
}

/// Folds a block of ASCII units; the result for other units is arbitrary. Bit 0x80 of a unit is set in `reachesA` from
/// 'A' on, and in `passesZ` from behind 'Z' on.
constexpr Block toLowerAsciiUnits(Block block) noexcept {
    const Block reachesA = block + inEachUnit(0x80 - 'A');
    const Block passesZ = block + inEachUnit(0x80 - 'Z' - 1);
    return block | ((reachesA ^ passesZ) & inEachUnit(0x80)) >> 2;
}

/// Calls `use` for each block of `text`. The last block is padded with zeros.
template <class Use>
void forEachBlock(std::wstring_view text, Use use) {
    Block block = 0;
    std::size_t at = 0;
    for (; at + unitsInBlock <= text.size(); at += unitsInBlock) {
        std::memcpy(&block, text.data() + at, sizeof block);
        use(block, at, unitsInBlock);
    }
    if (at < text.size()) {
        block = 0;
        std::memcpy(&block, text.data() + at, (text.size() - at) * sizeof(wchar_t));
        use(block, at, text.size() - at);
    }
}

/// Distributes similar keys evenly: keys that differ in few places have very different hashes.
class Hash {
public:
    explicit Hash(std::size_t length) : state(seedOfProcess() ^ (length * odd)) {}

    void add(Block block) noexcept {
        state = (state ^ block) * odd;
        state ^= state >> 29;
    }

    /// Returns the hash; never 0.
    std::uint32_t get() const noexcept {
        return std::max(static_cast<std::uint32_t>(((state ^ (state >> 32)) * odd) >> 32), std::uint32_t{1});
    }

private:
    static constexpr std::uint64_t odd = 0x9E3779B97F4A7C15;

    std::uint64_t state;
};

} // namespace

FoldedKey::FoldedKey(const std::wstring& key) : text(key) {
    wchar_t* target = shortFolded.data();
    if (key.size() > usualLength) {
        longFolded.resize(key.size());
        target = longFolded.data();
    }
    Block seen = 0;
    Hash hashOfKey(key.size());
    forEachBlock(key, [&](Block block, std::size_t at, std::size_t count) {
        seen |= block;
        block = toLowerAsciiUnits(block);
        hashOfKey.add(block);
        std::memcpy(target + at, &block, count * sizeof(wchar_t));
    });
    folded = {target, key.size()};
    hash = hashOfKey.get();
    if ((seen & ~inEachUnit(firstBeyondAscii - 1)) != 0) {
        foldBeyondAscii();
    }
}

void FoldedKey::foldBeyondAscii() {
    longFolded = KyrCoreUtils::toLowercase(std::wstring_view(text));
    folded = longFolded;
    Hash hashOfKey(folded.size());
    forEachBlock(folded, [&](Block block, std::size_t, std::size_t) { hashOfKey.add(block); });
    hash = hashOfKey.get();
}

bool FoldedKey::equals(std::wstring_view other) const noexcept {
    if (other.size() != folded.size()) {
        return false;
    }
    // Fast path: keys read from documents are in lower case.
    if (std::wmemcmp(other.data(), folded.data(), folded.size()) == 0) {
        return true;
    }
    Unit seen = 0;
    Unit differing = 0;
    for (std::size_t i = 0; i < folded.size(); ++i) {
        seen |= unitOf(other[i]);
        differing |= toLowerAscii(unitOf(other[i])) ^ unitOf(folded[i]);
    }
    if (seen < firstBeyondAscii) {
        return differing == 0;
    }
    return KyrCoreUtils::caseInsensitiveStringEquals(std::wstring_view(text), other);
}

} // namespace ZelUnified
