#pragma once

#include <ConfigMap.h>

#include <string>
#include <string_view>

namespace ZelUnified {

/// The text of "PrimaryConfigStores": which cached copies the next run restores, and their priorities. An entry is
/// `name:priority;`, the last one closed too.
class CachedStoreRecord {
public:
    /// Returns the entries as name to priority text. A piece that is not exactly a name and a priority is left out; a
    /// repeated name keeps its last priority. The misspelt name is the published one.
    static ConfigMap getCachedConfigStorePrioityMap(const std::wstring& record);
    /// The entries in map order.
    static std::wstring format(const ConfigMap& priorities);
    /// Cuts the first occurrence of `name`, as plain text ignoring case, through the ";" that closes its entry.
    static std::wstring without(std::wstring record, std::wstring_view name);
};

} // namespace ZelUnified
