#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace bench {

/// Sets one key after the other, in each round to another value than in the round before.
template <typename Text>
class WriteRounds {
public:
    struct Write {
        std::size_t key;
        const Text& value;
    };

    explicit WriteRounds(std::size_t keyCount) : keys(keyCount) {}

    /// Hands so many numbers of keys and their values to `set`, behind those of the last call; returns the last write.
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
