#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace config_model {

/// Empty when the lines are the same; else the model's lines beside the product's from the first that differs on.
inline std::string describeDifference(const std::vector<std::string>& expected, const std::vector<std::string>& got) {
    if (expected == got) {
        return "";
    }
    const auto [e, g] = std::mismatch(expected.begin(), expected.end(), got.begin(), got.end());
    const auto common = static_cast<std::size_t>(e - expected.begin());
    std::string text;
    for (std::size_t i = 0; i < std::max(expected.size(), got.size()); ++i) {
        const auto& model = i < expected.size() ? expected[i] : "(nothing)";
        const auto& product = i < got.size() ? got[i] : "(nothing)";
        text += i < common ? "    both:    " + model + "\n" : "    model:   " + model + "\n    product: " + product + "\n";
    }
    return text;
}

/// Performs the steps on both sides until their traces differ. The readers read all there is to read at the end.
template <class Step>
std::string compare(std::span<const Step> steps, auto&& performOnModel, auto&& performOnProduct, auto&& readModel,
                    auto&& readProduct) {
    std::string story;
    for (const auto& step : steps) {
        story += describe(step) + "\n";
        const auto difference = describeDifference(performOnModel(step), performOnProduct(step));
        if (!difference.empty()) {
            return story + difference;
        }
    }
    const auto difference = describeDifference(readModel(), readProduct());
    return difference.empty() ? "" : story + "(everything read)\n" + difference;
}

/// The fewest steps, by leaving out ever smaller runs of them, that still make a difference.
template <class Step>
std::vector<Step> shrink(std::vector<Step> steps, auto&& differs) {
    for (std::size_t run = steps.size(); run > 0; run /= 2) {
        for (std::size_t first = 0; first + run <= steps.size();) {
            auto fewer = steps;
            const auto begin = fewer.begin() + static_cast<std::ptrdiff_t>(first);
            fewer.erase(begin, begin + static_cast<std::ptrdiff_t>(run));
            if (differs(std::span<const Step>(fewer))) {
                steps = std::move(fewer);
            } else {
                ++first;
            }
        }
    }
    return steps;
}

} // namespace config_model
