#include "FipsValueOverride.h"

#include <kyr/StringUtils.h>
#include <zel/FipsUtils.h>

namespace zel {

void applyFipsValueOverride(std::wstring_view key, std::wstring& value) {
    if (common::FipsUtils::isFipsEnabled() &&
        KyrCoreUtils::caseInsensitiveStringEquals(key, L"Telephony_P2P_Enabled")) {
        value = L"false";
    }
}

} // namespace zel
