#include "StorableText.h"

#include "RequestError.h"

#include <kyr/StringUtils.h>
#include <kyr/XmlNames.h>

#include <ConfigCatalogue.h>

namespace inspection {

void requireStorableKey(const std::wstring& key) {
    if (!KyrCoreUtils::isXmlName(key)) {
        throw RequestError(RequestError::Code::Refused,
                           "the key '" + KyrCoreUtils::toString(key) +
                               "' is not an XML name: a document or report with it would be ill-formed; --force sets "
                               "it all the same");
    }
}

void requireStorableValue(const std::wstring& value) {
    if (KyrCoreUtils::findUnrepresentable(value)) {
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
