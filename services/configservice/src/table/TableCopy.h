#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ZelUnified {

class ConfigTable;

/// A copy of the keys and values of a table, in its order. All texts are in one piece of memory, so that a store that
/// copies thousands of entries holds its lock only for a fraction of a millisecond. Zeroes the texts before it frees
/// them, because a value may be a secret.
class TableCopy {
public:
    TableCopy() = default;
    explicit TableCopy(ConfigTable& table) { assign(table); }
    ~TableCopy();
    TableCopy(const TableCopy&) = delete;
    TableCopy& operator=(const TableCopy&) = delete;

    /// Returns the number of characters of all keys and values of the table.
    static std::size_t countCharacters(ConfigTable& table);

    /// Allocates memory for so many characters, so that assign() need not do so under the lock of the table.
    void reserve(std::size_t count);
    /// Replaces the contents with those of the table.
    void assign(ConfigTable& table);
    void swap(TableCopy& other) noexcept;

    /// Returns true if the table contains the same keys and values, including their case.
    bool equals(ConfigTable& table) const;

    std::size_t size() const noexcept { return ends.size() / 2; }
    std::wstring_view getKey(std::size_t index) const noexcept { return getText(2 * index); }
    std::wstring_view getValue(std::size_t index) const noexcept { return getText(2 * index + 1); }

private:
    std::wstring_view getText(std::size_t number) const noexcept {
        const std::size_t begin = number == 0 ? 0 : ends[number - 1];
        return std::wstring_view(characters).substr(begin, ends[number] - begin);
    }
    void add(std::wstring_view text);

    std::wstring characters;
    std::vector<std::size_t> ends; ///< The ends of each key and its value in `characters`.
};

} // namespace ZelUnified
