#include "UrlProvisioningData.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

#include <algorithm>
#include <string>
#include <vector>

namespace ZelUnified {

namespace {

constexpr std::size_t maximumUrlLength = 999;

bool isAllowed(std::wstring_view key) {
    return std::ranges::any_of(ConfigKeys::provisioningKeys, [key](const ConfigKeys::KeyRow* allowed) {
        return KyrCoreUtils::caseInsensitiveStringEquals(allowed->name, key);
    });
}

} // namespace

ConfigMap parseUrlProvisioningData(std::wstring_view url) {
    ConfigMap settings;
    const auto question = url.find(L'?');
    if (url.size() > maximumUrlLength || question == std::wstring_view::npos) {
        return settings;
    }
    std::vector<std::wstring> parts;
    std::vector<std::wstring> pieces;
    KyrCoreUtils::split(url.substr(question + 1), parts, L"&");
    for (const auto& part : parts) {
        KyrCoreUtils::split(part, pieces, L"=");
        if (pieces.size() != 2) {
            continue;
        }
        const auto key = KyrCoreUtils::trim(pieces.front());
        if (!key.empty() && isAllowed(key)) {
            settings.insert_or_assign(key, KyrCoreUtils::trim(pieces.back()));
        }
    }
    return settings;
}

} // namespace ZelUnified
