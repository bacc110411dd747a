#include "FipsValueOverride.h"

#include <kyr/StringUtils.h>
#include <zel/FipsUtils.h>

#include <ConfigKeys.h>

namespace zel {

namespace {

constexpr std::wstring_view overridden = L"false";

bool hasFipsOverride(std::wstring_view key) {
    return common::FipsUtils::isFipsEnabled() &&
           KyrCoreUtils::caseInsensitiveStringEquals(key, ZelUnified::ConfigKeys::telephonyP2PEnabled);
}

} // namespace

void applyFipsValueOverride(std::wstring_view key, std::wstring& value) {
    if (hasFipsOverride(key)) {
        value = overridden;
    }
}

std::wstring_view withFipsOverride(std::wstring_view key, std::wstring_view held) {
    return hasFipsOverride(key) ? overridden : held;
}

} // namespace zel
