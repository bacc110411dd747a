#include "SensitiveKeySecuringUtility.h"

#include "secure/SecureString.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <algorithm>

namespace ZelUnified {

namespace {

constexpr std::wstring_view ediPassword = L"ConnectionPassword"; // spelled differently from the catalogue
constexpr std::wstring_view bdiPassword = ConfigKeys::bdiConnectionPassword;
constexpr std::wstring_view wellKnown[SensitiveKeySecuringUtility::KEYS_TO_SECURE] = {ediPassword, bdiPassword};

} // namespace

// Must be defined in this order: the array copies the two names when the library is loaded.
const std::wstring SensitiveKeySecuringUtility::EDI_PSW_KEY(ediPassword);
const std::wstring SensitiveKeySecuringUtility::BDI_PSW_KEY(bdiPassword);
const std::wstring SensitiveKeySecuringUtility::WELL_KNOWN_SENSITIVE_KEYS[KEYS_TO_SECURE] = {EDI_PSW_KEY, BDI_PSW_KEY};

void SensitiveKeySecuringUtility::secureWellKnownSensitiveKeys(ConfigMap& values) {
    for (const std::wstring& key : WELL_KNOWN_SENSITIVE_KEYS) {
        if (auto entry = values.find(key); entry != values.end()) {
            secureKey(entry);
        }
    }
}

bool SensitiveKeySecuringUtility::isWellKnownSensitiveKey(std::wstring_view key) noexcept {
    return std::any_of(std::begin(wellKnown), std::end(wellKnown),
                       [key](std::wstring_view name) { return KyrCoreUtils::caseInsensitiveStringEquals(key, name); });
}

void SensitiveKeySecuringUtility::secureKey(ConfigMap::iterator& entry) {
    std::string clear = KyrCoreUtils::toString(entry->second);
    zel::SecureString::wipe(entry->second);
    const std::string secured = zel::SecureString(clear).toBase64();
    zel::SecureString::wipe(clear);
    entry->second = KyrCoreUtils::toWideString(secured);
}

} // namespace ZelUnified
