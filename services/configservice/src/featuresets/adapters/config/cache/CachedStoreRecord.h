#pragma once

#include <ConfigMap.h>

#include <string>
#include <string_view>

namespace ZelUnified {

/// Formats and parses the text of "PrimaryConfigStores": the cached copies that the next run restores, and their
/// priorities. Every entry, including the last, is `name:priority;`.
class CachedStoreRecord {
public:
    /// Returns the entries as a map from name to priority text. Skips a piece that is not exactly a name and a
    /// priority. The last priority of a repeated name wins. The misspelt function name is published.
    static ConfigMap getCachedConfigStorePrioityMap(const std::wstring& record);
    /// Returns the text of the entries, in map order.
    static std::wstring format(const ConfigMap& priorities);
    /// Returns `record` without the first occurrence of `name` (plain text, case-insensitive) through the ";" that ends
    /// its entry.
    static std::wstring without(std::wstring record, std::wstring_view name);
};

} // namespace ZelUnified
