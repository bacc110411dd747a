#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

namespace bench {

/// Generates keys and values that resemble a client's: camel case of 10 to 35 letters with many common prefixes, and
/// values of 5 to 60 characters. Equal seeds give equal results on every machine. No two keys are equal ignoring case.
class SyntheticKeys {
public:
    explicit SyntheticKeys(std::uint32_t seed) : engine(seed) {}

    std::wstring makeKey();
    std::vector<std::wstring> makeKeys(std::size_t count);
    std::wstring makeValue();

private:
    // The distributions differ between standard libraries; the engine does not.
    std::size_t below(std::size_t limit) { return engine() % limit; }

    std::mt19937 engine;
    std::unordered_set<std::wstring> given; ///< In lower case.
};

} // namespace bench
