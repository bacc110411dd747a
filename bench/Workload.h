#pragma once

#include <ConfigMap.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace bench {

class SyntheticKeys;

/// A key to ask for, in mixed case, and what the answer must be.
struct Probe {
    std::wstring key;
    std::wstring value;
};

/// Layers of keys, of which three in ten stand in an earlier layer as well, and probes in an order that no cache of the
/// processor foresees. The first layer that holds a key answers it; the answers are worked out by a plain map, apart
/// from all that is measured. The same on every machine.
class Workload {
public:
    static constexpr std::size_t hotKeys = 64;
    static constexpr std::size_t unknownKeys = 5000;

    Workload(std::size_t layerCount, std::size_t keysInLayer);

    const std::vector<ZelUnified::ConfigMap>& getLayers() const { return layers; }
    /// One for each key of the union of all layers.
    const std::vector<Probe>& getHits() const { return hits; }
    /// A few of them.
    const std::vector<Probe>& getHotHits() const { return hotHits; }
    /// Keys that no layer holds; their values are empty.
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
