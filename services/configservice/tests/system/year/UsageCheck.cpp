#include "UsageCheck.h"

#include <algorithm>
#include <cstddef>

namespace simulated_year {

using testing_host::ProcessUsage;

namespace {

/// Fewer days differ too much: in the settings, policies and log lines that the model has at their end.
constexpr std::size_t fewestDays = 365;
/// A leak of each day appears in the day that holds least. Caches fill during the first part of the run.
constexpr std::size_t parts = 4;
constexpr std::size_t heapTolerance = std::size_t{32} << 10;
constexpr std::size_t residentTolerance = std::size_t{2} << 20;

using Member = std::size_t ProcessUsage::*;

/// Returns the smallest value in one part of the days.
std::size_t findLeast(const std::vector<ProcessUsage>& usages, std::size_t part, Member member) {
    const std::size_t length = usages.size() / parts;
    const auto begin = usages.begin() + static_cast<std::ptrdiff_t>(part * length);
    const auto least = std::min_element(begin, begin + static_cast<std::ptrdiff_t>(length),
                                        [member](const auto& a, const auto& b) { return a.*member < b.*member; });
    return (*least).*member;
}

std::string compare(const std::string& what, std::size_t before, std::size_t after) {
    return what + " grew from " + std::to_string(before) + " to " + std::to_string(after);
}

} // namespace

std::vector<std::string> UsageCheck::measure() {
    usages.push_back(ProcessUsage::measure());
    const auto& first = usages.front();
    const auto& now = usages.back();
    std::vector<std::string> lines;
    if (now.fileDescriptors != first.fileDescriptors) {
        lines.push_back(compare("the number of descriptors", first.fileDescriptors, now.fileDescriptors));
    }
    if (now.threads != first.threads) {
        lines.push_back(compare("the number of threads", first.threads, now.threads));
    }
    return lines;
}

std::vector<std::string> UsageCheck::findGrowth() const {
    std::vector<std::string> lines;
    if (usages.size() < fewestDays) {
        return lines;
    }
    const auto expectFlat = [&](const std::string& what, Member member, std::size_t tolerance) {
        const auto before = findLeast(usages, 1, member);
        const auto after = findLeast(usages, parts - 1, member);
        if (after > before + tolerance) {
            lines.push_back(compare(what, before, after));
        }
    };
    expectFlat("the heap", &ProcessUsage::heapBytes, heapTolerance);
    if (!ProcessUsage::isInstrumented()) {
        expectFlat("resident memory", &ProcessUsage::residentBytes, residentTolerance);
    }
    return lines;
}

} // namespace simulated_year
