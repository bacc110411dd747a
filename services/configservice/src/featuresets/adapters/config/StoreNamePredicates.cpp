#include "StoreNamePredicates.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

namespace ZelUnified {

namespace {

bool beginsWith(std::string_view name, std::wstring_view needle) {
    return KyrCoreUtils::caseInsensitiveFind(KyrCoreUtils::toWideString(name), needle) == 0;
}

bool beginsWithCached(std::string_view name, std::wstring_view needle) {
    return beginsWith(name, std::wstring(L"cached").append(needle));
}

} // namespace

bool isGarnConfigStore(std::string_view name) {
    return beginsWith(name, ConfigKeys::garnNamePart);
}
bool isPresenceConfigStore(std::string_view name) {
    return beginsWith(name, ConfigKeys::presenceConfigStore);
}
bool isTftpConfigStore(std::string_view name) {
    return beginsWith(name, ConfigKeys::tftpNamePart);
}
bool isTaviLyncRegistryConfigStore(std::string_view name) {
    return beginsWith(name, ConfigKeys::taviLyncRegistryConfigStore);
}

bool isCachedGarnConfigStore(std::string_view name) {
    return beginsWithCached(name, ConfigKeys::garnNamePart);
}
bool isCachedPresenceConfigStore(std::string_view name) {
    return beginsWithCached(name, ConfigKeys::presenceConfigStore);
}
bool isCachedTftpConfigStore(std::string_view name) {
    return beginsWithCached(name, ConfigKeys::tftpNamePart);
}

} // namespace ZelUnified
