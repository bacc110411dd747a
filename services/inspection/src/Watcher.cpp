#include "Watcher.h"

#include "KeyPattern.h"

#include <algorithm>

namespace inspection {

void Watcher::addPatterns(const std::vector<std::wstring>& added) {
    watchesAll = watchesAll || added.empty();
    patterns.insert(patterns.end(), added.begin(), added.end());
}

void Watcher::clearPatterns() {
    watchesAll = false;
    patterns.clear();
}

bool Watcher::isInterestedIn(const std::vector<std::wstring>& names) const {
    return watchesAll || std::ranges::any_of(patterns, [&](const std::wstring& pattern) {
               return std::ranges::any_of(names,
                                          [&](const std::wstring& name) { return matchesPattern(name, pattern); });
           });
}

} // namespace inspection
