#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ZelUnified {

/// A key folded to lower case and hashed, computed once for all tables of a walk. It refers to the string passed to the
/// constructor. Keys of usual length need no allocation.
class FoldedKey {
public:
    explicit FoldedKey(const std::wstring& key);
    explicit FoldedKey(std::wstring&&) = delete;
    FoldedKey(const FoldedKey&) = delete;
    FoldedKey& operator=(const FoldedKey&) = delete;

    /// Returns the original key.
    const std::wstring& getText() const noexcept { return text; }
    /// Returns the key in lower case.
    std::wstring_view getFolded() const noexcept { return folded; }
    /// Returns the hash; never 0.
    std::uint32_t getHash() const noexcept { return hash; }

    /// Returns true if the keys are equal (case-insensitive).
    bool equals(std::wstring_view other) const noexcept;

private:
    void foldBeyondAscii();

    static constexpr std::size_t usualLength = 64;

    const std::wstring& text;
    std::array<wchar_t, usualLength> shortFolded;
    std::wstring longFolded;
    std::wstring_view folded;
    std::uint32_t hash = 0;
};

} // namespace ZelUnified
