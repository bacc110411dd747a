#pragma once

#include "output/KeyFindings.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Asks the service's catalogue of keys. All names are UTF-8. Any thread.

/// Returns the catalogue's facts about the key with this new or old name, or nothing if it does not contain the key.
std::optional<KeyFacts> findKeyFacts(const std::wstring& key);
/// Returns the facts about the keys that have a name that matches the pattern, in the order of the catalogue.
std::vector<KeyFacts> findKeys(std::string_view pattern);
/// Returns all new and old names.
std::vector<std::string> listKnownNames();
/// Returns the key in the spelling of the catalogue; an unknown key is returned unchanged.
std::string spell(const std::string& key);

/// Returns true if the name matches the pattern, ignoring case: `*` matches any text, `?` one character. A pattern
/// without these matches names that contain it.
bool matchesPattern(std::wstring_view name, std::wstring_view pattern);

} // namespace lumora_config
