#include "StorableCheck.h"

#include "KeyCommands.h"
#include "output/Failure.h"

#include <kyr/StringUtils.h>
#include <kyr/XmlNames.h>

#include <iomanip>
#include <sstream>

namespace lumora_config {

namespace {

using KyrCoreUtils::findUnrepresentable;
using KyrCoreUtils::isXmlName;
using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;

[[noreturn]] void refuseUnlessForced(const std::string& reason) {
    throw Failure(ExitCode::NotFound, reason + "; --force sets it anyway");
}

std::string nameCodePoint(char32_t c) {
    std::ostringstream text;
    text << "U+" << std::uppercase << std::hex << std::setw(4) << std::setfill('0') << static_cast<unsigned long>(c);
    return text.str();
}

/// Never quotes the value, which may be a secret.
void requireKeptValue(const std::string& key, const std::string& value) {
    const auto wideValue = toWideString(value);
    if (toString(wideValue) != value) {
        refuseUnlessForced("the value of the key '" + key + "' is not UTF-8 and would be stored with U+FFFD");
    }
    if (const auto character = findUnrepresentable(wideValue)) {
        refuseUnlessForced("the value of the key '" + key + "' contains " + nameCodePoint(*character) +
                           ", which XML cannot represent: it would be stored as U+FFFD");
    }
}

} // namespace

void requireStorable(const std::string& key, const std::string& value, bool forced) {
    if (key.empty()) {
        throw Failure(ExitCode::NotFound, "the key is empty");
    }
    if (forced) {
        return;
    }
    const auto wideKey = toWideString(key);
    if (toString(wideKey) != key || !isXmlName(wideKey)) {
        refuseUnlessForced("the key '" + key +
                           "' is not an XML name: a document or report with it would be ill-formed");
    }
    requireKeptValue(key, value);
    requirePermitted(key, value);
}

} // namespace lumora_config
