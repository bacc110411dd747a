#include "StorableText.h"

#include "RequestError.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

#include <algorithm>

namespace inspection {

namespace {

bool isLetter(wchar_t character) {
    return (character >= L'A' && character <= L'Z') || (character >= L'a' && character <= L'z') || character == L'_' ||
           character >= wchar_t{0xC0};
}

bool isNameCharacter(wchar_t character) {
    return isLetter(character) || (character >= L'0' && character <= L'9') || character == L'-' || character == L'.';
}

bool isInXml(wchar_t character) {
    const bool isControl = character < L' ' && character != L'\t' && character != L'\n' && character != L'\r';
    return !isControl && character != wchar_t{0xFFFE} && character != wchar_t{0xFFFF};
}

} // namespace

void requireStorableKey(const std::wstring& key) {
    // Stricter than XML beyond ASCII is not needed: no key of the client contains such characters.
    if (key.empty() || !isLetter(key.front()) || !std::ranges::all_of(key, isNameCharacter)) {
        throw RequestError(RequestError::Code::Refused,
                           "the key '" + KyrCoreUtils::toString(key) +
                               "' is not an XML name: a document or report with it would be ill-formed; --force sets "
                               "it all the same");
    }
}

void requireStorableValue(const std::wstring& value) {
    if (!std::ranges::all_of(value, isInXml)) {
        throw RequestError(RequestError::Code::Refused, "the value contains a character that XML cannot represent: it "
                                                        "would be stored as U+FFFD; --force sets it all the same");
    }
}

void requirePermitted(const std::wstring& key, const std::wstring& value) {
    const auto* const row = ZelUnified::ConfigKeys::findKey(key);
    if (row != nullptr && !ZelUnified::ConfigKeys::permits(*row, value)) {
        throw RequestError(RequestError::Code::Refused, "the value of the key '" + spell(key) + "' must be " +
                                                            ZelUnified::ConfigKeys::describePermittedValues(*row) +
                                                            "; --force sets it anyway");
    }
}

std::string spell(const std::wstring& key) {
    return KyrCoreUtils::toString(ZelUnified::ConfigKeys::spellKey(key));
}

} // namespace inspection
