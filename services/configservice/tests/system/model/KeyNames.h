#pragma once

#include <string>

namespace config_model {

/// The name that took the place of this key, or the name that this key took the place of; empty when there is none.
std::wstring findNewName(const std::wstring& key);
std::wstring findOldName(const std::wstring& key);

} // namespace config_model
