#pragma once

#include "ModelStore.h"

#include <string>

namespace config_model {

/// Parses the record of cached stores into pairs of name and priority.
Pairs readRecord(const std::wstring& text);
int readPriority(const std::wstring& text);

/// Return the record with one more entry, or without the first entry that mentions the store.
std::wstring recordWith(const std::wstring& text, const std::string& name, int priority);
std::wstring recordWithout(std::wstring text, const std::string& name);

/// Returns false if the name contains ".." as a path component: such a store has no copy on the disk.
bool mayHaveCopy(std::string storeName);

} // namespace config_model
