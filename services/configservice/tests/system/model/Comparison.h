#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace config_model {

/// Returns "" if the lines are equal. Otherwise returns the common first lines, those of the model and those of the
/// product, without the common last lines.
inline std::string describeDifference(std::vector<std::string> model, std::vector<std::string> product) {
    if (model == product) {
        return "";
    }
    while (!model.empty() && !product.empty() && model.back() == product.back()) {
        model.pop_back();
        product.pop_back();
    }
    const auto common = static_cast<std::size_t>(
        std::mismatch(model.begin(), model.end(), product.begin(), product.end()).first - model.begin());
    std::string text;
    for (std::size_t i = 0; i < model.size(); ++i) {
        text += (i < common ? "    both:    " : "    model:   ") + model[i] + "\n";
    }
    for (std::size_t i = common; i < product.size(); ++i) {
        text += "    product: " + product[i] + "\n";
    }
    return text;
}

/// Performs the steps on both sides until their traces differ. At the end, compares everything that can be read.
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

/// Returns the smallest sequence of steps that still shows a difference, found by removing ever shorter runs of steps.
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
