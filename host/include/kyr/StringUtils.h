#pragma once

#include <zel/HostExport.h>

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Text helpers of the host. Narrow text is UTF-8 everywhere, wide text is UTF-32 or UTF-16 by the width of wchar_t. No
/// function depends on the C locale, throws on bad input, or stops at an embedded NUL.
namespace KyrCoreUtils {

/// Converts wide text to UTF-8. A lone surrogate or a value beyond U+10FFFF becomes U+FFFD.
LUMORA_HOST_API std::string toString(std::wstring_view text);

/// Converts UTF-8 to wide text. Each maximal ill-formed part becomes one U+FFFD.
LUMORA_HOST_API std::wstring toWideString(std::string_view text);
/// Converts UTF-8 to wide text in `wide` and reuses its memory.
LUMORA_HOST_API void toWideString(std::string_view text, std::wstring& wide);
/// Returns the number in decimal.
LUMORA_HOST_API std::wstring toWideString(int number);
LUMORA_HOST_API std::wstring toWideString(unsigned int number);
/// Returns "true" or "false", which toBool() parses. A template, so that a string literal never converts to bool by
/// accident.
template <std::same_as<bool> Bool>
std::wstring toWideString(Bool flag) {
    return flag ? L"true" : L"false";
}

/// Maps each code point with Unicode's simple lower-case mapping, which is idempotent. Wide text keeps its number of
/// code units; ill-formed parts are unchanged.
LUMORA_HOST_API std::wstring toLowercase(std::wstring_view text);
LUMORA_HOST_API std::string toLowercase(std::string_view text);
/// Like toLowercase(), in place.
LUMORA_HOST_API void makeLowercase(std::wstring& text);

/// Returns a negative number, zero or a positive number if `a` sorts before, equal to or after `b`, comparing the
/// lower-case code points. A strict weak order, independent of the locale and without full case folding: "ß" differs
/// from "ss". Does not allocate.
LUMORA_HOST_API int caseInsensitiveStringCompare(std::wstring_view a, std::wstring_view b) noexcept;
LUMORA_HOST_API bool caseInsensitiveStringEquals(std::wstring_view a, std::wstring_view b) noexcept;
/// Compares UTF-8 text; ill-formed bytes compare as they are.
LUMORA_HOST_API bool caseInsensitiveStringEquals(std::string_view a, std::string_view b) noexcept;

/// Returns the position of the first case-insensitive occurrence of `needle` in `text`, in code units; -1 if there is
/// none.
LUMORA_HOST_API std::ptrdiff_t caseInsensitiveFind(std::wstring_view text, std::wstring_view needle);
/// Returns true if the whole text matches the pattern, case-insensitively: "*" matches any text, "?" one code unit. The
/// time grows with the product of the two lengths at most.
LUMORA_HOST_API bool matchesWildcards(std::wstring_view text, std::wstring_view pattern);

/// Removes blank, tab, LF, VT, FF and CR from both ends.
LUMORA_HOST_API std::string trim(std::string_view text);
LUMORA_HOST_API std::wstring trim(std::wstring_view text);
/// Like trim(), but returns a view of `text` instead of a copy.
LUMORA_HOST_API std::string_view trimmedView(std::string_view text) noexcept;
/// Like trim(), but removes only from the left end.
LUMORA_HOST_API std::string trimleft(std::string_view text);
LUMORA_HOST_API std::wstring trimleft(std::wstring_view text);

/// Replaces `pieces` with the parts of `text` between the occurrences of the string `separator`. Keeps every empty
/// part, including the last one. An empty text gives no part; an empty separator gives the whole text as one part.
LUMORA_HOST_API void split(std::string_view text, std::vector<std::string>& pieces, std::string_view separator);
LUMORA_HOST_API void split(std::wstring_view text, std::vector<std::wstring>& pieces, std::wstring_view separator);

/// Returns true for "true", "1", "yes" and "on", case-insensitive, ignoring white space around them; false otherwise.
LUMORA_HOST_API bool toBool(std::string_view text) noexcept;
LUMORA_HOST_API bool toBool(std::wstring_view text) noexcept;

/// Parses a decimal number with an optional sign, ignoring white space around it. Returns `fallback` if the text is not
/// a number or out of range.
LUMORA_HOST_API int toInt(std::wstring_view text, int fallback) noexcept;

} // namespace KyrCoreUtils
