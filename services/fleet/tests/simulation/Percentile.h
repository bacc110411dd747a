#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace fleet_test {

/// Returns the value below which this part of the values is; 0.5 for the median, 1 for the greatest. `values` must not
/// be empty.
inline double getPercentile(std::vector<double> values, double part) {
    std::ranges::sort(values);
    return values.at(static_cast<std::size_t>(part * static_cast<double>(values.size() - 1)));
}

} // namespace fleet_test
