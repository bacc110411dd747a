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
        std::size_t key = 0;
        const Text* value = nullptr;
    };

    explicit WriteRounds(std::size_t keyCount) : keys(keyCount) {}

    /// Hands so many numbers of keys and their values to `set`, behind those of the last call; returns the last write.
    template <typename Set>
    Write run(std::size_t times, Set set) {
        Write last;
        for (; times > 0; --times, ++writes) {
            last = {writes % keys, &values[writes / keys % values.size()]};
            set(last.key, *last.value);
        }
        return last;
    }

private:
    static Text toText(std::string_view ascii) { return Text(ascii.begin(), ascii.end()); }

    const std::size_t keys;
    const std::array<Text, 2> values{toText("sip.primary.example.com:5061"), toText("sip.backup.example.com:5061")};
    std::size_t writes = 0;
};

} // namespace bench
