#include "DeferredRecords.h"

#include "ConfigValueImpl.h"

#include <kyr/StringUtils.h>

#include <utility>

namespace ZelUnified {

void DeferredRecords::add(const std::shared_ptr<ConfigValueImpl>& record) {
    if (taken > 0) {
        clear();
    }
    records.push_back(record);
}

std::shared_ptr<ConfigValueImpl> DeferredRecords::take(const std::wstring& key) {
    if (taken == records.size()) {
        return nullptr;
    }
    if (!KyrCoreUtils::caseInsensitiveStringEquals(records[taken]->getIndexedKey(), key)) {
        clear(); // another order than was foreseen
        return nullptr;
    }
    auto record = std::move(records[taken]);
    if (++taken == records.size()) {
        clear();
    }
    return record;
}

void DeferredRecords::clear() noexcept {
    // What dies with a record may come back here.
    const auto released = std::exchange(records, {});
    taken = 0;
}

} // namespace ZelUnified
