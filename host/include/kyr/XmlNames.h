#pragma once

#include <zel/HostExport.h>

#include <optional>
#include <string_view>

/// Checks of text that becomes part of an XML 1.0 document: keys are names of elements, values are their text. Any
/// thread.
namespace KyrCoreUtils {

/// Returns true if the text is a valid name of an XML element. Accepts colons, which a reader that knows namespaces
/// takes as the end of a prefix.
LUMORA_HOST_API bool isXmlName(std::wstring_view text);

/// Returns the first character or lone surrogate that no XML document can contain, or nothing.
LUMORA_HOST_API std::optional<char32_t> findUnrepresentable(std::wstring_view text);

} // namespace KyrCoreUtils
