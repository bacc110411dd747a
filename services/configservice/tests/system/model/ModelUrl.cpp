#include "ModelUrl.h"

#include <algorithm>

namespace config_model {

namespace {

const std::wstring allowedKeys[] = {
    L"ServicesDomain",
    L"VoiceServicesDomain",
    L"ServiceDiscoveryExcludedServices",
    L"ServicesDomainSsoEmailPrompt",
    L"Telephony_Enabled",
    L"TelemetryEnabled",
    L"sso_enabled",
    L"EdgeSsoPrecedence",
    L"Meetings_Enabled",
    L"Telephony_P2P_Enabled",
    L"alphap2penabled",
    L"InvalidCertificateBehavior",
    L"EnablePRTEncryption",
    L"PRTCertificateName",
    L"IP_MODE",
    L"SystemProxyUsage",
    L"DiagnosticsToolEnabled",
    L"ContactsDiagnosticsToolEnabled",
    L"STARTUP_AUTHENTICATION_REQUIRED",
    L"ConfigRefetchInterval",
    L"EnableUserIdURLEscape",
    L"EdgeOnlyMode",
    L"AllowTeamsUseEmbeddedSafari",
};

std::vector<std::wstring> splitAt(const std::wstring& text, wchar_t separator) {
    std::vector<std::wstring> pieces(1);
    for (const auto character : text) {
        if (character == separator) {
            pieces.emplace_back();
        } else {
            pieces.back() += character;
        }
    }
    return pieces;
}

std::wstring trim(const std::wstring& text) {
    const auto first = text.find_first_not_of(L" \t\n\v\f\r");
    const auto last = text.find_last_not_of(L" \t\n\v\f\r");
    return first == std::wstring::npos ? L"" : text.substr(first, last - first + 1);
}

} // namespace

Pairs readProvisioningUrl(const std::wstring& url) {
    const auto mark = url.find(L'?');
    if (url.size() > 999 || mark == std::wstring::npos) {
        return {};
    }
    Pairs pairs;
    for (const auto& part : splitAt(url.substr(mark + 1), L'&')) {
        const auto pieces = splitAt(part, L'=');
        if (pieces.size() != 2) {
            continue;
        }
        const auto key = trim(pieces[0]);
        if (std::any_of(std::begin(allowedKeys), std::end(allowedKeys),
                        [&](const auto& allowed) { return isSame(allowed, key); })) {
            pairs.emplace_back(key, trim(pieces[1]));
        }
    }
    return pairs;
}

} // namespace config_model
