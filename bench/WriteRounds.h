#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace bench {

/// Sets the same keys in each round, and to another value than in the round before.
template <typename Text>
class WriteRounds {
public:
    explicit WriteRounds(std::size_t keyCount) : keys(keyCount) {}

    /// Hands the number of each key and the round's value to `set`; returns that value.
    template <typename Set>
    const Text& run(std::size_t times, Set set) {
        const Text& value = values[++rounds % values.size()];
        for (std::size_t i = 0; i < times; ++i) {
            set(i % keys, value);
        }
        return value;
    }

private:
    static Text toText(std::string_view ascii) { return Text(ascii.begin(), ascii.end()); }

    const std::size_t keys;
    const std::array<Text, 2> values{toText("sip.primary.example.com:5061"), toText("sip.backup.example.com:5061")};
    std::size_t rounds = 0;
};

} // namespace bench
