#include "KeyNameMap.h"

#include <utility>

namespace ZelUnified {

KeyNameMap::KeyNameMap(ConfigMap names) : map(std::move(names)) {
    index.reserve(map.size());
    for (auto& entry : map) {
        index.insert(FoldedKey(entry.first), entry);
    }
}

} // namespace ZelUnified
