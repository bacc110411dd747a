#pragma once

#include <ProcessUsage.h>

#include <cstddef>
#include <string>
#include <vector>

namespace simulated_year {

/// Measures the process at the end of each day.
class UsageCheck {
public:
    /// The number of days is known in advance, because the check must not allocate while it measures.
    explicit UsageCheck(std::size_t days) { usages.reserve(days); }

    /// Returns a line if the number of descriptors or of threads differs from the first day.
    std::vector<std::string> measure();
    /// Returns a line if the memory of the last quarter of the days is larger than that of the second one. Returns
    /// nothing for less than 365 days.
    std::vector<std::string> findGrowth() const;

    const std::vector<testing_host::ProcessUsage>& getUsages() const { return usages; }

private:
    std::vector<testing_host::ProcessUsage> usages;
};

} // namespace simulated_year
