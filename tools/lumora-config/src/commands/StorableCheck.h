#pragma once

#include <string>

namespace lumora_config {

/// Throws Failure (NotFound) for a key or value that the user's file, a cached copy or the report cannot represent, and
/// for a value that the kind of the key excludes. If `forced` is true, refuses only an empty key. The message never
/// quotes the value, which may be a secret.
void requireStorable(const std::string& key, const std::string& value, bool forced);

} // namespace lumora_config
