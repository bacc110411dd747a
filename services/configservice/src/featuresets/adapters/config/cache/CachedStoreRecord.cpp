#include "CachedStoreRecord.h"

#include <kyr/StringUtils.h>

#include <vector>

namespace ZelUnified {

ConfigMap CachedStoreRecord::getCachedConfigStorePrioityMap(const std::wstring& record) {
    ConfigMap priorities;
    std::vector<std::wstring> entries;
    std::vector<std::wstring> parts;
    KyrCoreUtils::split(record, entries, L";");
    for (const auto& entry : entries) {
        KyrCoreUtils::split(entry, parts, L":");
        if (parts.size() == 2) {
            priorities.insert_or_assign(parts.front(), parts.back());
        }
    }
    return priorities;
}

std::wstring CachedStoreRecord::format(const ConfigMap& priorities) {
    std::wstring record;
    for (const auto& [name, priority] : priorities) {
        record.append(name).append(L":").append(priority).append(L";");
    }
    return record;
}

std::wstring CachedStoreRecord::without(std::wstring record, std::wstring_view name) {
    const auto lowered = KyrCoreUtils::toLowercase(record);
    const auto begin = lowered.find(KyrCoreUtils::toLowercase(name));
    if (begin == std::wstring::npos) {
        return record;
    }
    const auto end = lowered.find(L';', begin);
    record.erase(begin, end == std::wstring::npos ? end : end - begin + 1);
    return record;
}

} // namespace ZelUnified
