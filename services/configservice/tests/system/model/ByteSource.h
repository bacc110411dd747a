#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace config_model {

/// Converts bytes to small choices, so that a seed and a fuzzer use the same generator. Returns zeroes after the last
/// byte.
class ByteSource {
public:
    explicit ByteSource(std::span<const std::uint8_t> source) : bytes(source) {}

    bool isEmpty() const { return bytes.empty(); }
    std::size_t below(std::size_t limit) {
        if (bytes.empty()) {
            return 0;
        }
        const std::size_t choice = bytes.front() % limit;
        bytes = bytes.subspan(1);
        return choice;
    }
    bool flip() { return below(2) == 1; }
    /// Returns true once in `times` calls on average.
    bool oneIn(std::size_t times) { return below(times) + 1 == times; }
    template <class Range>
    const auto& pick(const Range& range) {
        return range[below(std::size(range))];
    }

private:
    std::span<const std::uint8_t> bytes;
};

inline std::vector<std::uint8_t> makeBytes(std::uint32_t seed, std::size_t count) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes(count);
    for (auto& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    return bytes;
}

} // namespace config_model
