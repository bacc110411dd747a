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

    /// Returns a line for each deviation from the first days: a descriptor or a thread more, or much more memory.
    std::vector<std::string> measure();
    /// Compares the later half of the days with the earlier one.
    std::vector<std::string> findGrowth() const;

    const std::vector<testing_host::ProcessUsage>& getUsages() const { return usages; }

private:
    std::vector<testing_host::ProcessUsage> usages;
};

} // namespace simulated_year
