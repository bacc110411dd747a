#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>
#include <ConfigMap.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <type_traits>
#include <vector>

namespace ZelUnified::ConfigKeys {
namespace {

enum class Width { Wide, Narrow };

struct Row {
    std::size_t number;
    std::string text;
    Width width;
};

/// The agreed catalogue, independent of the header: each change must be made in both.
const std::vector<Row> agreed = {
    {1, "Addtional_Info", Width::Wide},
    {2, "ConnectionUserDn", Width::Wide},
    {3, "connectionpassword", Width::Wide},
    {4, "connectionusername", Width::Wide},
    {5, "AllowUrlProvisioning", Width::Wide},
    {6, "BrindleConfigStore", Width::Wide},
    {7, "BDIConnectionPassword", Width::Wide},
    {8, "BDIConnectionUserDn", Width::Wide},
    {9, "BDIConnectionUsername", Width::Wide},
    {10, "BlockVersionBelow", Width::Wide},
    {11, "BootstrapConfigStore", Width::Narrow},
    {12, "cachedBrindleConfigStore.dat", Width::Wide},
    {13, "cachedPresenceConfigStore.dat", Width::Wide},
    {14, "cachedTftpConfigStore.dat", Width::Narrow},
    {15, "cachedMirroxOrgOrGrpAdminConfigStore.dat", Width::Narrow},
    {16, "Cache", Width::Narrow},
    {17, "SabrelServer1", Width::Wide},
    {18, "SabrelServer2", Width::Wide},
    {19, "SabrelServer3", Width::Wide},
    {20, "CC_Mode", Width::Wide},
    {21, "CIMigrationConfigStore", Width::Narrow},
    {22, "configurationfile", Width::Wide},
    {23, "CtiServer1", Width::Wide},
    {24, "TaviLyncRegistryConfigStore", Width::Wide},
    {25, "Customize_Phone_Server", Width::Wide},
    {26, "Customize_Voicemail_Server", Width::Wide},
    {27, "lumora-config-defaults.xml", Width::Narrow},
    {28, "devOverrideConfigStore", Width::Narrow},
    {29, "lumora-config-user.xml", Width::Narrow},
    {30, "EdgeOnlyMode", Width::Wide},
    {31, "EnableCallPickup", Width::Wide},
    {32, "EnableGroupCallPickup", Width::Wide},
    {33, "EnableHuntGroup", Width::Wide},
    {34, "EnablePellumQmt", Width::Wide},
    {35, "EnableOtherGroupPickup", Width::Wide},
    {36, "Initial_Info", Width::Wide},
    {37, "InvalidCertificateBehavior", Width::Wide},
    {38, "InvalidCredentialsLogout", Width::Wide},
    {39, "InMemoryConfigStore", Width::Narrow},
    {40, "IP_MODE", Width::Wide},
    {41, "Lumora_SDK_Mode", Width::Wide},
    {42, "LegacyOAuthLogout", Width::Wide},
    {43, "lumoraLocalConfig_backup.dat", Width::Narrow},
    {44, "lumoraLocalConfig.dat", Width::Narrow},
    {45, "LocalFileConfigStore", Width::Narrow},
    {46, "PellumQmt_Control_Mode", Width::Wide},
    {47, "PellumQmt_Fast_Login", Width::Wide},
    {48, "MdmConfigStore", Width::Narrow},
    {49, "*******", Width::Wide},
    {50, "Phone_Mode", Width::Wide},
    {51, "PresenceConfigStore", Width::Wide},
    {52, "PreventDeclineOnHuntCall", Width::Wide},
    {53, "PrimaryConfigStores", Width::Wide},
    {54, "ProductMode", Width::Wide},
    {55, "Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC", Width::Narrow},
    {56, "RegistryConfigStore", Width::Narrow},
    {57, "RemoteDestinationEditingWithMultipleDevices", Width::Wide},
    {58, "RemoteAccess", Width::Wide},
    {59, "SelfCareURL", Width::Wide},
    {60, "VALUE_HIDDEN", Width::Wide},
    {61, "ShowSelfCarePortal", Width::Wide},
    {62, "SystemProxyUsage", Width::Wide},
    {63, "Teams_SSO_Support", Width::Wide},
    {64, "TelephonyOnlyDiscovery", Width::Wide},
    {65, "Telephony_P2P_Enabled", Width::Wide},
    {66, "TFTPConfigStore", Width::Narrow},
    {67, "Tftp", Width::Wide},
    {68, "TFTPPrimaryServer", Width::Wide},
    {69, "TFTPBackupServer1", Width::Wide},
    {70, "TFTPBackupServer2", Width::Wide},
    {71, "Garn", Width::Wide},
    {72, "ServicesDomain", Width::Wide},
    {73, "ServiceDiscoveryExcludedServices", Width::Wide},
    {74, "ServicesDomainSsoEmailPrompt", Width::Wide},
    {75, "Telephony_Enabled", Width::Wide},
    {76, "TelemetryEnabled", Width::Wide},
    {77, "sso_enabled", Width::Wide},
    {78, "EdgeSsoPrecedence", Width::Wide},
    {79, "Meetings_Enabled", Width::Wide},
    {80, "alphap2penabled", Width::Wide},
    {81, "EnablePRTEncryption", Width::Wide},
    {82, "PRTCertificateName", Width::Wide},
    {83, "DiagnosticsToolEnabled", Width::Wide},
    {84, "ContactsDiagnosticsToolEnabled", Width::Wide},
    {85, "STARTUP_AUTHENTICATION_REQUIRED", Width::Wide},
    {86, "ConfigRefetchInterval", Width::Wide},
    {87, "EnableUserIdURLEscape", Width::Wide},
    {88, "AllowTeamsUseEmbeddedSafari", Width::Wide},
    {89, "UrlProvisioningConfigStore", Width::Narrow},
    {90, "UserDefinedRemoteDestinations", Width::Wide},
    {91, "VoicemailPrimaryServer", Width::Wide},
    {92, "VVM_Mailstore_Server_0", Width::Wide},
    {93, "VoiceServicesDomain", Width::Wide},
    {94, "Mrx_MeetingList_OfflineData", Width::Wide},
    {95, "Mrx_MeetingList_OnlineData", Width::Wide},
    {96, "MirroxOrgOrGrpAdminConfigStore", Width::Narrow},
    {97, "CertificateValidationEnabled", Width::Wide},
};

Width widthOf(const CatalogueEntry& entry) {
    return std::holds_alternative<std::wstring_view>(entry) ? Width::Wide : Width::Narrow;
}

std::string textOf(const CatalogueEntry& entry) {
    const auto* wide = std::get_if<std::wstring_view>(&entry);
    return wide != nullptr ? KyrCoreUtils::toString(*wide) : std::string(std::get<std::string_view>(entry));
}

TEST(ConfigCatalogue, HoldsTheAgreedTextsInTheirWidthAndOrder) {
    ASSERT_EQ(catalogue.size(), agreed.size());
    for (const auto& [number, text, width] : agreed) {
        SCOPED_TRACE(number);
        const CatalogueEntry& entry = catalogue[number - 1];
        EXPECT_EQ(textOf(entry), text);
        EXPECT_EQ(widthOf(entry), width) << text;
    }
}

TEST(ConfigCatalogue, EveryConstantOfTheHeaderIsARowInItsPlace) {
    const auto header = testing_host::readFile(std::filesystem::path(INCLUDE_FOLDER) / "ConfigKeys.h");
    const std::regex constant(R"re(std::(w?)string_view\s+\w+\s*=\s*L?"([^"]*)";)re");
    std::vector<std::string> declared;
    for (std::sregex_iterator found(header.begin(), header.end(), constant), end; found != end; ++found) {
        declared.push_back((*found)[1].str() + (*found)[2].str());
    }
    std::vector<std::string> rows;
    rows.reserve(agreed.size());
    for (const auto& row : agreed) {
        rows.push_back((row.width == Width::Wide ? "w" : "") +
                       std::regex_replace(row.text, std::regex(R"(\\)"), R"(\\)"));
    }
    EXPECT_EQ(declared, rows);
}

TEST(ConfigCatalogue, NoTwoNamesAreOneKey) {
    ConfigKeySet seen;
    for (const auto& entry : catalogue) {
        EXPECT_TRUE(seen.insert(KyrCoreUtils::toWideString(textOf(entry))).second) << textOf(entry);
    }
}

TEST(ConfigCatalogue, NamesAreConstantsOfTheirOwnWidth) {
    static_assert(std::is_same_v<decltype(telephonyP2PEnabled), const std::wstring_view>);
    static_assert(std::is_same_v<decltype(localFileConfigStore), const std::string_view>);
    static_assert(additionalInfo == L"Addtional_Info", "misspelt since ever, and matched as it is");
    static_assert(cacheDirectory == "Cache");
    static_assert(maskText.size() == 7);
    EXPECT_FALSE(KyrCoreUtils::caseInsensitiveStringEquals(additionalInfo, L"Additional_Info"));
    EXPECT_TRUE(KyrCoreUtils::caseInsensitiveStringEquals(telephonyP2PEnabled, L"TELEPHONY_P2P_ENABLED"));
}

} // namespace
} // namespace ZelUnified::ConfigKeys
