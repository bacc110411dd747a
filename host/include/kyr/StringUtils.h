#pragma once

#include <zel/HostExport.h>

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Text helpers of the host. Narrow text is UTF-8 everywhere, wide text is UTF-32 or UTF-16 by the width of wchar_t.
/// Nothing here depends on the C locale, throws on bad input, or stops at an embedded NUL.
namespace KyrCoreUtils {

/// Wide to UTF-8. A lone surrogate or a value beyond U+10FFFF becomes U+FFFD.
LUMORA_HOST_API std::string toString(std::wstring_view text);

/// UTF-8 to wide. Each maximal ill-formed part becomes one U+FFFD.
LUMORA_HOST_API std::wstring toWideString(std::string_view text);
/// The same into a string whose memory is used again.
LUMORA_HOST_API void toWideString(std::string_view text, std::wstring& wide);
/// Decimal text.
LUMORA_HOST_API std::wstring toWideString(int number);
LUMORA_HOST_API std::wstring toWideString(unsigned int number);
/// "true" or "false", which toBool() reads back. A template so that a literal never converts to bool by accident.
template <std::same_as<bool> Bool>
std::wstring toWideString(Bool flag) {
    return flag ? L"true" : L"false";
}

/// Maps each code point by Unicode's simple lower-case mapping: idempotent. Wide text keeps its number of code units;
/// what is ill-formed stays as it is.
LUMORA_HOST_API std::wstring toLowercase(std::wstring_view text);
LUMORA_HOST_API std::string toLowercase(std::string_view text);
/// The same in place.
LUMORA_HOST_API void makeLowercase(std::wstring& text);

/// Negative, zero or positive as `a` sorts before, with or behind `b`, lower-cased code point by code point.
/// A strict weak order without locale or full folding: "ß" is not "ss". Allocates nothing.
LUMORA_HOST_API int caseInsensitiveStringCompare(std::wstring_view a, std::wstring_view b) noexcept;
LUMORA_HOST_API bool caseInsensitiveStringEquals(std::wstring_view a, std::wstring_view b) noexcept;
/// As above on UTF-8; ill-formed bytes compare as they are.
LUMORA_HOST_API bool caseInsensitiveStringEquals(std::string_view a, std::string_view b) noexcept;

/// Position of the first occurrence of `needle` in `text`, ignoring case, in code units; -1 when it is absent.
LUMORA_HOST_API std::ptrdiff_t caseInsensitiveFind(std::wstring_view text, std::wstring_view needle);

/// Cuts blank, tab, LF, VT, FF and CR from both ends.
LUMORA_HOST_API std::string trim(std::string_view text);
LUMORA_HOST_API std::wstring trim(std::wstring_view text);
/// The same without a copy: a part of `text`.
LUMORA_HOST_API std::string_view trimmedView(std::string_view text) noexcept;
/// The same from the left end only.
LUMORA_HOST_API std::string trimleft(std::string_view text);
LUMORA_HOST_API std::wstring trimleft(std::wstring_view text);

/// Replaces `pieces` by what stands between the occurrences of `separator`, a whole string. Every empty piece is kept,
/// the trailing one too; the empty text gives no piece; an empty separator gives the text as one piece.
LUMORA_HOST_API void split(std::string_view text, std::vector<std::string>& pieces, std::string_view separator);
LUMORA_HOST_API void split(std::wstring_view text, std::vector<std::wstring>& pieces, std::wstring_view separator);

/// True for "true", "1", "yes" and "on" in any case, white space around them ignored; false for all else.
LUMORA_HOST_API bool toBool(std::string_view text) noexcept;
LUMORA_HOST_API bool toBool(std::wstring_view text) noexcept;

/// The decimal number, white space around it ignored, with an optional sign. `fallback` when the text is anything else
/// or out of range.
LUMORA_HOST_API int toInt(std::wstring_view text, int fallback) noexcept;

} // namespace KyrCoreUtils
