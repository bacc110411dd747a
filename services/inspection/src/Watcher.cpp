#include "Watcher.h"

#include <kyr/StringUtils.h>

#include <algorithm>

namespace inspection {

using KyrCoreUtils::matchesWildcards;

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
                                          [&](const std::wstring& name) { return matchesWildcards(name, pattern); });
           });
}

} // namespace inspection
