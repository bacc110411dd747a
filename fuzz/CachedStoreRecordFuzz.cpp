// The record of cached stores is unchanged after it is written and read again. Removing a store shortens it.
#include "Require.h"
#include "featuresets/adapters/config/cache/CachedStoreRecord.h"

#include <kyr/StringUtils.h>

#include <cstdint>
#include <string>

using fuzz::require;
using ZelUnified::CachedStoreRecord;

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    const auto record = KyrCoreUtils::toWideString(std::string_view(reinterpret_cast<const char*>(data), size));
    const auto priorities = CachedStoreRecord::getCachedConfigStorePrioityMap(record);
    const auto written = CachedStoreRecord::format(priorities);
    require(CachedStoreRecord::getCachedConfigStorePrioityMap(written) == priorities);
    for (const auto& [name, priority] : priorities) {
        require(CachedStoreRecord::without(record, name).size() < record.size());
        require(CachedStoreRecord::without(written, name).size() < written.size());
    }
    std::wstring rest = record;
    while (!rest.empty()) {
        auto shorter = CachedStoreRecord::without(rest, L"");
        require(shorter.size() < rest.size());
        rest = std::move(shorter);
    }
    return 0;
}
