#pragma once

#include <string>

namespace inspection {

/// Throw RequestError (Refused) for a key or a value that the user's file, a cached copy or the report would not keep
/// unchanged. The message never quotes the value, which may be a secret.
void requireStorableKey(const std::wstring& key);
void requireStorableValue(const std::wstring& value);

/// Throws RequestError (Refused) for a value that the kind of the key excludes. The message does not quote the value
/// either.
void requirePermitted(const std::wstring& key, const std::wstring& value);

/// Returns the key in the spelling of the catalogue, for messages.
std::string spell(const std::wstring& key);

} // namespace inspection
