// The record of cached stores survives being read and written, and taking a store out of it makes it shorter.
#include "Require.h"
#include "featuresets/adapters/config/cache/CachedStoreRecord.h"

#include <kyr/StringUtils.h>

#include <cstdint>
#include <string>

using fuzz::require;
using ZelUnified::CachedStoreRecord;

// The name is libFuzzer's.
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
