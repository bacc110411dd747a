#pragma once

#include "ModelStore.h"

#include <string>

namespace config_model {

/// The record of cached stores, as pairs of name and priority.
Pairs readRecord(const std::wstring& text);
int readPriority(const std::wstring& text);

/// The record with an entry more, or without the first entry that mentions the store.
std::wstring recordWith(const std::wstring& text, const std::string& name, int priority);
std::wstring recordWithout(std::wstring text, const std::string& name);

/// Returns false if ".." stands between the separators of the name: such a store has no copy on the disk.
bool mayHaveCopy(std::string storeName);

} // namespace config_model
