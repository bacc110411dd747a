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

bool Watcher::isInterestedIn(const Change& change) const {
    return watchesAll || std::ranges::any_of(patterns, [&](const std::wstring& pattern) {
               return matchesWildcards(change.key, pattern) ||
                      (change.oldName && matchesWildcards(*change.oldName, pattern));
           });
}

} // namespace inspection
