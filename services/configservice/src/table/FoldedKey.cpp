#include "FoldedKey.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <random>

namespace ZelUnified {

namespace {

using Unit = std::uint32_t; // wide units may be signed

constexpr Unit firstBeyondAscii = 0x80;

constexpr Unit unitOf(wchar_t character) noexcept {
    return static_cast<Unit>(character);
}

/// Without a branch, since letters of both cases mix in a key.
constexpr Unit toLowerAscii(Unit unit) noexcept {
    const bool isUpper = unit - 'A' <= 'Z' - 'A';
    return unit | (static_cast<Unit>(isUpper) << 5);
}

/// Another one in each process, so that nobody can make a document whose keys all share one hash.
std::uint64_t seedOfProcess() {
    static const std::uint64_t seed = [] {
        std::random_device device;
        return (std::uint64_t{device()} << 32) | device();
    }();
    return seed;
}

/// As many units as are folded and hashed in one step.
using Block = std::uint64_t;
constexpr std::size_t unitsInBlock = sizeof(Block) / sizeof(wchar_t);

constexpr Block inEachUnit(Block number) noexcept {
    Block block = 0;
    for (std::size_t i = 0; i < unitsInBlock; ++i) {
        block = block << (8 * sizeof(wchar_t)) | number;
    }
    return block;
}

/// For units of ASCII; of others it makes anything. Where one reaches 'A' its bit 0x80 is set in the one sum, where it
/// passes 'Z' in the other too.
constexpr Block toLowerAsciiUnits(Block block) noexcept {
    const Block reachesA = block + inEachUnit(0x80 - 'A');
    const Block passesZ = block + inEachUnit(0x80 - 'Z' - 1);
    return block | ((reachesA ^ passesZ) & inEachUnit(0x80)) >> 2;
}

/// What is short of a block at the end is filled with zeros.
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

/// What matters is that keys which differ in few places end far apart.
class Hash {
public:
    explicit Hash(std::size_t length) : state(seedOfProcess() ^ (length * odd)) {}

    void add(Block block) noexcept {
        state = (state ^ block) * odd;
        state ^= state >> 29;
    }

    /// Never 0.
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

bool FoldedKey::names(std::wstring_view other) const noexcept {
    if (other.size() != folded.size()) {
        return false;
    }
    // Documents are read into keys of lower case, so this decides most often.
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
