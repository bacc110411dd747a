#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace bench {

/// Sets one key after another, with a different value in each round.
template <typename Text>
class WriteRounds {
public:
    struct Write {
        std::size_t key;
        const Text& value;
    };

    explicit WriteRounds(std::size_t keyCount) : keys(keyCount) {}

    /// Calls `set` with the next so many key numbers and values, continuing after the last call. Returns the last
    /// write.
    template <typename Set>
    Write run(std::size_t times, Set set) {
        for (; times > 0; --times, ++writes) {
            const Write next = getWrite(writes);
            set(next.key, next.value);
        }
        return getWrite(writes - 1);
    }

private:
    Write getWrite(std::size_t number) const { return {number % keys, values[number / keys % values.size()]}; }

    static constexpr std::string_view primary = "sip.primary.example.com:5061";
    static constexpr std::string_view backup = "sip.backup.example.com:5061";

    const std::size_t keys;
    const std::array<Text, 2> values{Text(primary.begin(), primary.end()), Text(backup.begin(), backup.end())};
    std::size_t writes = 0;
};

} // namespace bench
