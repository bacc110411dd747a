#include "UsageCheck.h"

#include <algorithm>

namespace simulated_year {

using testing_host::ProcessUsage;

namespace {

/// Libraries that are loaded and caches that fill on the first days.
constexpr std::size_t warmUpDays = 10;
/// The days differ in the settings and policies that the model and the profile have at their end, by a few kilobytes.
/// A leak of each day appears in the day that holds least.
constexpr std::size_t heapTolerance = std::size_t{8} << 10;
constexpr std::size_t residentTolerance = std::size_t{2} << 20;

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
    if (usages.size() < 4 * warmUpDays) {
        return lines;
    }
    const auto begin = usages.begin() + warmUpDays;
    const auto middle = begin + (usages.end() - begin) / 2;
    const auto leastHeap = [](auto from, auto to) {
        return std::min_element(from, to, [](const auto& a, const auto& b) { return a.heapBytes < b.heapBytes; })
            ->heapBytes;
    };
    const auto leastResident = [](auto from, auto to) {
        return std::min_element(from, to,
                                [](const auto& a, const auto& b) { return a.residentBytes < b.residentBytes; })
            ->residentBytes;
    };
    const auto heapBefore = leastHeap(begin, middle);
    const auto heapAfter = leastHeap(middle, usages.end());
    if (heapAfter > heapBefore + heapTolerance) {
        lines.push_back(compare("the heap", heapBefore, heapAfter));
    }
    const auto residentBefore = leastResident(begin, middle);
    const auto residentAfter = leastResident(middle, usages.end());
    if (!ProcessUsage::isInstrumented() && residentAfter > residentBefore + residentTolerance) {
        lines.push_back(compare("resident memory", residentBefore, residentAfter));
    }
    return lines;
}

} // namespace simulated_year
