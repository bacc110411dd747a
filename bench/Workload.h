#pragma once

#include <ConfigMap.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace bench {

class SyntheticKeys;

/// A key to look up, in mixed case, and the expected value.
struct Probe {
    std::wstring key;
    std::wstring value;
};

/// Layers of keys, three in ten of which are in an earlier layer too, and probes in an order that the processor cannot
/// prefetch. The first layer that contains a key determines the value. A plain map computes the expected values
/// independently of the measured code. The same on every machine.
class Workload {
public:
    static constexpr std::size_t hotKeys = 64;
    static constexpr std::size_t unknownKeys = 5000;

    Workload(std::size_t layerCount, std::size_t keysInLayer);

    const std::vector<ZelUnified::ConfigMap>& getLayers() const { return layers; }
    /// One probe for each key of the union of all layers.
    const std::vector<Probe>& getHits() const { return hits; }
    /// A small subset of the hits.
    const std::vector<Probe>& getHotHits() const { return hotHits; }
    /// Keys that no layer contains; their values are empty.
    const std::vector<Probe>& getMisses() const { return misses; }

private:
    void addLayer(SyntheticKeys& generator, std::size_t keysInLayer);
    void makeProbes(SyntheticKeys& generator);
    std::wstring toMixedCase(std::wstring key);

    std::mt19937 engine;
    std::vector<ZelUnified::ConfigMap> layers;
    std::vector<std::wstring> unionKeys;
    std::vector<Probe> hits;
    std::vector<Probe> hotHits;
    std::vector<Probe> misses;
};

} // namespace bench
