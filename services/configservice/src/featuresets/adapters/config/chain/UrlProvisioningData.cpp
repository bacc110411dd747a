#include "UrlProvisioningData.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace ZelUnified {

namespace {

constexpr std::size_t maximumUrlLength = 999;

constexpr std::array allowedKeys{
    ConfigKeys::servicesDomain,
    ConfigKeys::voiceServicesDomain,
    ConfigKeys::serviceDiscoveryExcludedServices,
    ConfigKeys::servicesDomainSsoEmailPrompt,
    ConfigKeys::telephonyEnabled,
    ConfigKeys::telemetryEnabled,
    ConfigKeys::ssoEnabled,
    ConfigKeys::edgeSsoPrecedence,
    ConfigKeys::meetingsEnabled,
    ConfigKeys::telephonyP2PEnabled,
    ConfigKeys::alphaP2PEnabled,
    ConfigKeys::invalidCertificateBehavior,
    ConfigKeys::enablePrtEncryption,
    ConfigKeys::prtCertificateName,
    ConfigKeys::ipMode,
    ConfigKeys::systemProxyUsage,
    ConfigKeys::diagnosticsToolEnabled,
    ConfigKeys::contactsDiagnosticsToolEnabled,
    ConfigKeys::startupAuthenticationRequired,
    ConfigKeys::configRefetchInterval,
    ConfigKeys::enableUserIdUrlEscape,
    ConfigKeys::edgeOnlyMode,
    ConfigKeys::allowTeamsUseEmbeddedSafari,
};

bool isAllowed(std::wstring_view key) {
    return std::any_of(allowedKeys.begin(), allowedKeys.end(), [&](std::wstring_view allowed) {
        return KyrCoreUtils::caseInsensitiveStringEquals(allowed, key);
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
