#include "Workload.h"

#include "SyntheticKeys.h"

#include <kyr/StringUtils.h>

#include <unordered_map>
#include <utility>

namespace bench {

namespace {

constexpr std::uint32_t seed = 20240229;
/// The percentage of a layer's keys that an earlier layer contains too.
constexpr std::size_t overlapPercent = 30;

} // namespace

Workload::Workload(std::size_t layerCount, std::size_t keysInLayer) : engine(seed) {
    SyntheticKeys generator(seed);
    for (std::size_t i = 0; i < layerCount; ++i) {
        addLayer(generator, keysInLayer);
    }
    makeProbes(generator);
}

void Workload::addLayer(SyntheticKeys& generator, std::size_t keysInLayer) {
    const std::size_t known = unionKeys.size();
    const std::size_t shared = layers.empty() ? 0 : keysInLayer * overlapPercent / 100;
    auto& layer = layers.emplace_back();
    while (layer.size() < shared) {
        layer.emplace(unionKeys[engine() % known], generator.makeValue());
    }
    while (layer.size() < keysInLayer) {
        unionKeys.push_back(generator.makeKey());
        layer.emplace(unionKeys.back(), generator.makeValue());
    }
}

void Workload::makeProbes(SyntheticKeys& generator) {
    std::unordered_map<std::wstring, const std::wstring*> answers;
    for (const auto& layer : layers) {
        for (const auto& [key, value] : layer) {
            answers.emplace(KyrCoreUtils::toLowercase(key), &value);
        }
    }
    for (std::size_t i = unionKeys.size(); i > 1; --i) {
        std::swap(unionKeys[i - 1], unionKeys[engine() % i]);
    }
    for (const auto& key : unionKeys) {
        hits.push_back({toMixedCase(key), *answers.at(KyrCoreUtils::toLowercase(key))});
    }
    hotHits.assign(hits.begin(), hits.begin() + hotKeys);
    for (std::size_t i = 0; i < unknownKeys; ++i) {
        misses.push_back({toMixedCase(generator.makeKey()), {}});
    }
}

std::wstring Workload::toMixedCase(std::wstring key) {
    for (auto& letter : key) {
        const bool isLetter = (letter >= L'a' && letter <= L'z') || (letter >= L'A' && letter <= L'Z');
        if (isLetter && engine() % 2 == 0) {
            letter = static_cast<wchar_t>(letter ^ (L'a' ^ L'A'));
        }
    }
    return key;
}

} // namespace bench
