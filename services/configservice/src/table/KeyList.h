#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ZelUnified {

/// Keys that lie one behind the other, so that making and walking a list of thousands does not wait for as many places
/// in memory.
class KeyList {
public:
    KeyList() = default;
    explicit KeyList(const std::vector<std::wstring>& keys);

    /// Room for so many ends; their characters take it as they come.
    void reserve(std::size_t keys) { ends.reserve(keys); }
    void add(std::wstring_view key);

    std::size_t size() const noexcept { return ends.size(); }
    std::wstring_view operator[](std::size_t place) const noexcept {
        const std::size_t begin = place == 0 ? 0 : ends[place - 1];
        return std::wstring_view(characters).substr(begin, ends[place] - begin);
    }

private:
    std::wstring characters;       ///< Of all keys.
    std::vector<std::size_t> ends; ///< Of each key in `characters`.
};

} // namespace ZelUnified
