#include "ClosestNames.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace lumora_config {

namespace {

constexpr std::size_t mostResults = 3;
constexpr std::size_t mostEdits = 3;

/// Independent of the locale, so that every machine suggests the same names.
char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string lower(std::string_view text) {
    std::string folded(text);
    std::ranges::transform(folded, folded.begin(), [](char c) { return lower(c); });
    return folded;
}

std::size_t getMaximumEdits(std::string_view word) {
    return std::min((word.size() + 2) / 3, mostEdits);
}

/// Returns the number of insertions, deletions, replacements and exchanges of neighbours that turn `from` into `to`.
std::size_t editDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> beforeLast;
    std::vector<std::size_t> last(to.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::vector<std::size_t> row(to.size() + 1, i);
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = from[i - 1] == to[j - 1] ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + replaced});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast = std::exchange(last, std::move(row));
    }
    return last.back();
}

} // namespace

std::vector<std::string> closestNames(std::string_view word, const std::vector<std::string>& candidates) {
    const auto folded = lower(word);
    auto smallest = getMaximumEdits(folded);
    std::vector<std::string> closest;
    for (const auto& candidate : candidates) {
        // Each edit changes the length by at most one, so most candidates need no comparison.
        if (std::max(candidate.size(), folded.size()) - std::min(candidate.size(), folded.size()) > smallest) {
            continue;
        }
        const auto distance = editDistance(folded, lower(candidate));
        if (distance > smallest) {
            continue;
        }
        if (distance < smallest) {
            smallest = distance;
            closest.clear();
        }
        if (closest.size() < mostResults && std::ranges::find(closest, candidate) == closest.end()) {
            closest.push_back(candidate);
        }
    }
    return closest;
}

std::string suggestNames(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool isLast = i + 1 == names.size();
        text += (i == 0 ? "; did you mean " : isLast ? " or " : ", ") + ("'" + names[i] + "'");
    }
    return text.empty() ? text : text + '?';
}

std::string suggest(std::string_view word, const std::vector<std::string>& candidates) {
    return suggestNames(closestNames(word, candidates));
}

} // namespace lumora_config
