#include "FipsValueOverride.h"

#include <kyr/StringUtils.h>
#include <zel/FipsUtils.h>

#include <ConfigKeys.h>

namespace zel {

void applyFipsValueOverride(std::wstring_view key, std::wstring& value) {
    if (common::FipsUtils::isFipsEnabled() &&
        KyrCoreUtils::caseInsensitiveStringEquals(key, ZelUnified::ConfigKeys::telephonyP2PEnabled)) {
        value = L"false";
    }
}

} // namespace zel
