#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ZelUnified {

/// A key as tables look it up: folded to lower case and hashed, once for all tables of a walk. It refers to the text
/// that it was made of. Keys of usual length cost no allocation.
class FoldedKey {
public:
    explicit FoldedKey(const std::wstring& key);
    explicit FoldedKey(std::wstring&&) = delete;
    FoldedKey(const FoldedKey&) = delete;
    FoldedKey& operator=(const FoldedKey&) = delete;

    /// The key as it was given.
    const std::wstring& getText() const noexcept { return text; }
    /// The key in lower case.
    std::wstring_view getFolded() const noexcept { return folded; }
    /// Never 0.
    std::uint32_t getHash() const noexcept { return hash; }

    /// Whether the keys are one key, ignoring case.
    bool names(std::wstring_view other) const noexcept;

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
