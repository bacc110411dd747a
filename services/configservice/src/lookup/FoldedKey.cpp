#include "FoldedKey.h"

#include <kyr/StringUtils.h>

#include <algorithm>
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

/// Two units at a time, each whole: what matters is that keys which differ in few places end far apart.
std::uint32_t hashOf(std::wstring_view text) {
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15;
    std::uint64_t hash = seedOfProcess() ^ (text.size() * odd);
    const auto unit = [&text](std::size_t place) { return std::uint64_t{unitOf(text[place])}; };
    std::size_t at = 0;
    for (; at + 2 <= text.size(); at += 2) {
        hash = (hash ^ unit(at) ^ (unit(at + 1) << 32)) * odd;
        hash ^= hash >> 29;
    }
    if (at < text.size()) {
        hash = (hash ^ unit(at)) * odd;
    }
    hash ^= hash >> 32;
    return std::max(static_cast<std::uint32_t>((hash * odd) >> 32), std::uint32_t{1});
}

} // namespace

FoldedKey::FoldedKey(const std::wstring& key) : text(key) {
    wchar_t* target = shortFolded.data();
    if (key.size() > usualLength) {
        longFolded.resize(key.size());
        target = longFolded.data();
    }
    Unit seen = 0;
    for (std::size_t i = 0; i < key.size(); ++i) {
        seen |= unitOf(key[i]);
        target[i] = static_cast<wchar_t>(toLowerAscii(unitOf(key[i])));
    }
    folded = {target, key.size()};
    if (seen >= firstBeyondAscii) {
        foldBeyondAscii();
    }
    hash = hashOf(folded);
}

void FoldedKey::foldBeyondAscii() {
    longFolded = KyrCoreUtils::toLowercase(std::wstring_view(text));
    folded = longFolded;
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
