#pragma once

#include <string>

namespace config_model {

/// Return the new name of an old one, or the old name of a new one; empty if there is none.
std::wstring findNewName(const std::wstring& key);
std::wstring findOldName(const std::wstring& key);

} // namespace config_model
