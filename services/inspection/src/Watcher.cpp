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

bool Watcher::isInterestedIn(const Change& change) const {
    return watchesAll || std::ranges::any_of(patterns, [&](const std::wstring& pattern) {
               return matchesPattern(change.key, pattern) ||
                      (change.oldName && matchesPattern(*change.oldName, pattern));
           });
}

} // namespace inspection
