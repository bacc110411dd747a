#pragma once

#include <string>

namespace inspection {

/// Throw RequestError (Refused) for a key or a value that the user's file, a cached copy or the report would not keep
/// unchanged. The message never quotes the value, which may be a secret.
void requireStorableKey(const std::wstring& key);
void requireStorableValue(const std::wstring& value);

} // namespace inspection
