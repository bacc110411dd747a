#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

namespace bench {

/// Makes keys and values that look like a client's: camel case of 10 to 35 letters with many common beginnings, values
/// of 5 to 60. The same seed gives the same ones on every machine. No key is given twice, ignoring case.
class SyntheticKeys {
public:
    explicit SyntheticKeys(std::uint32_t seed) : engine(seed) {}

    std::wstring makeKey();
    std::vector<std::wstring> makeKeys(std::size_t count);
    std::wstring makeValue();

private:
    // The distributions of the standard library differ from one to the next; the engine doesn't.
    std::size_t below(std::size_t limit) { return engine() % limit; }

    std::mt19937 engine;
    std::unordered_set<std::wstring> given; ///< In lower case.
};

} // namespace bench
