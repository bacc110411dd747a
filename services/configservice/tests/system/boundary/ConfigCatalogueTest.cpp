#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>
#include <ConfigMap.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace ZelUnified::ConfigKeys {
namespace {

enum class Width { Wide, Narrow };

struct Row {
    std::size_t number;
    std::string text;
    Width width;
};

/// The agreed beginning of the catalogue, independent of the rows in ConfigKeys.def.
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

/// The agreed old and new names, independent of the rows.
const std::vector<std::pair<std::wstring, std::wstring>> agreedRenamings = {
    {L"Start_Client_On_Start_OS", L"LaunchOnSystemStartup"},
    {L"TftpServer1", L"TFTPPrimaryServer"},
    {L"TftpServer2", L"TFTPBackupServer1"},
    {L"TftpServer3", L"TFTPBackupServer2"},
    {L"CtiServer1", L"CTIPrimaryServer"},
    {L"CtiServer2", L"CTIBackupServer"},
    {L"SabrelServer1", L"DeviceAuthenticationPrimaryServer"},
    {L"SabrelServer2", L"DeviceAuthenticationBackupServer"},
    {L"VVM_Mailstore_Server_0", L"VoicemailPrimaryServer"},
    {L"VVM_Mailstore_Server_1", L"VoicemailBackup1Server"},
    {L"VVM_Mailstore_Server_2", L"VoicemailBackup2Server"},
    {L"VVM_Mailstore_PollingInterval", L"VoicmeailPollingInterval"},
    {L"DockedWindowVisible", L"DockedWindow"},
    {L"contactListView", L"ShowContactPictures"},
    {L"EnableSipProtocolHandler", L"EnableSIPProtocol"},
    {L"EnableTelProtocolHandler", L"EnableTelProtocol"},
    {L"EnableImProtocolHandler", L"EnableIMProtocol"},
    {L"PresenceServerType", L"DiscoveredPresenceServerType"},
};

constexpr std::array<std::wstring_view, 9> agreedSensitiveKeys{
    L"Initial_Info",
    L"Addtional_Info",
    L"connectionpassword",
    L"connectionusername",
    L"BDIConnectionPassword",
    L"BDIConnectionUsername",
    L"BDIConnectionUserDn",
    L"Mrx_MeetingList_OfflineData",
    L"Mrx_MeetingList_OnlineData",
};

constexpr std::array<std::wstring_view, 23> agreedProvisioningKeys{
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

/// Returns true if the rows begin with the agreed names; rows that were added later follow.
constexpr bool beginsWith(const auto& rows, const auto& agreedNames) {
    return rows.size() >= agreedNames.size() &&
           std::ranges::equal(agreedNames, std::span(rows).first(agreedNames.size()), {}, {}, &KeyRow::name);
}

static_assert(beginsWith(sensitiveKeys, agreedSensitiveKeys));
static_assert(beginsWith(provisioningKeys, agreedProvisioningKeys));

Width widthOf(const CatalogueEntry& entry) {
    return std::holds_alternative<std::wstring_view>(entry) ? Width::Wide : Width::Narrow;
}

std::string textOf(const CatalogueEntry& entry) {
    const auto* wide = std::get_if<std::wstring_view>(&entry);
    return wide != nullptr ? KyrCoreUtils::toString(*wide) : std::string(std::get<std::string_view>(entry));
}

const KeyRow& getRow(std::wstring_view name) {
    const auto* const row = findKey(name);
    if (row == nullptr) {
        throw std::out_of_range("no such key: " + KyrCoreUtils::toString(name));
    }
    return *row;
}

TEST(ConfigCatalogue, BeginsWithThePublishedTextsInTheirWidthAndOrder) {
    ASSERT_GE(catalogue.size(), agreed.size());
    for (const auto& [number, text, width] : agreed) {
        SCOPED_TRACE(number);
        const CatalogueEntry& entry = catalogue[number - 1];
        EXPECT_EQ(textOf(entry), text);
        EXPECT_EQ(widthOf(entry), width) << text;
    }
}

TEST(ConfigCatalogue, NoTwoNamesAreTheSameKey) {
    ConfigKeySet seen;
    for (const auto& entry : catalogue) {
        EXPECT_TRUE(seen.insert(KyrCoreUtils::toWideString(textOf(entry))).second) << textOf(entry);
    }
    ConfigKeySet oldNames;
    for (const auto& row : keys) {
        if (row.isRenamed()) {
            EXPECT_TRUE(oldNames.insert(std::wstring(row.oldName)).second) << KyrCoreUtils::toString(row.oldName);
        }
    }
}

TEST(ConfigCatalogue, NamesAreConstantsOfTheirWidth) {
    static_assert(std::is_same_v<decltype(telephonyP2PEnabled), const std::wstring_view>);
    static_assert(std::is_same_v<decltype(localFileConfigStore), const std::string_view>);
    static_assert(additionalInfo == L"Addtional_Info", "other services use the misspelt name");
    static_assert(cacheDirectory == "Cache");
    static_assert(maskText.size() == 7);
    EXPECT_FALSE(KyrCoreUtils::caseInsensitiveStringEquals(additionalInfo, L"Additional_Info"));
    EXPECT_TRUE(KyrCoreUtils::caseInsensitiveStringEquals(telephonyP2PEnabled, L"TELEPHONY_P2P_ENABLED"));
}

TEST(ConfigCatalogue, EachTextIsAKeyAnOldNameOrAnotherName) {
    for (const auto& entry : catalogue) {
        const auto* const key = std::get_if<std::wstring_view>(&entry);
        const bool isKey = key != nullptr && findKey(*key) != nullptr;
        const bool isOtherName = std::ranges::find(names, entry, &NameRow::text) != names.end();
        EXPECT_NE(isKey, isOtherName) << textOf(entry);
    }
}

TEST(ConfigCatalogue, ContainsThePublishedOldNames) {
    for (const auto& [oldName, newName] : agreedRenamings) {
        SCOPED_TRACE(KyrCoreUtils::toString(newName));
        EXPECT_EQ(getRow(newName).name, newName);
        EXPECT_EQ(getRow(newName).oldName, oldName);
        EXPECT_EQ(findKey(oldName), findKey(newName));
    }
}

TEST(ConfigCatalogue, EachKeyHasAMeaningAndEachKindARule) {
    for (const auto& row : keys) {
        SCOPED_TRACE(KyrCoreUtils::toString(row.name));
        EXPECT_TRUE(row.meaning.ends_with('.'));
        EXPECT_TRUE(row.use.empty() || row.use.ends_with('.'));
        EXPECT_TRUE(row.kind == KeyKind::Text || !row.rule.empty());
        EXPECT_EQ(row.kind == KeyKind::Enumeration, !row.values.empty());
    }
    for (const auto& row : names) {
        EXPECT_TRUE(row.meaning.ends_with('.')) << textOf(row.text);
    }
}

TEST(ConfigCatalogue, FindsAKeyByEitherNameIgnoringCase) {
    EXPECT_EQ(getRow(L"SERVICESDOMAIN").name, L"ServicesDomain");
    EXPECT_EQ(getRow(L"tftpserver1").name, L"TFTPPrimaryServer");
    EXPECT_EQ(findKey(L"Theme"), nullptr);
    EXPECT_EQ(findKey(L""), nullptr);
    EXPECT_EQ(findKey(L"InMemoryConfigStore"), nullptr);
}

TEST(ConfigCatalogue, ReturnsTheSpellingOfTheNameThatWasUsed) {
    EXPECT_EQ(spellKey(L"servicesdomain"), L"ServicesDomain");
    EXPECT_EQ(spellKey(L"TFTPSERVER1"), L"TftpServer1");
    EXPECT_EQ(spellKey(L"tftpprimaryserver"), L"TFTPPrimaryServer");
    EXPECT_EQ(spellKey(L"theme"), L"theme");
}

TEST(ConfigCatalogue, ListsTheNewNameFirst) {
    using Names = std::vector<std::wstring>;
    EXPECT_EQ(getKeyNames(L"ctiserver1").getAll(), (Names{L"CTIPrimaryServer", L"CtiServer1"}));
    EXPECT_TRUE(getKeyNames(L"ctiserver1").isRequestedByOldName);
    EXPECT_EQ(getKeyNames(L"CTIPRIMARYSERVER").getAll(), (Names{L"CTIPrimaryServer", L"CtiServer1"}));
    EXPECT_FALSE(getKeyNames(L"CTIPRIMARYSERVER").isRequestedByOldName);
    EXPECT_EQ(getKeyNames(L"servicesDomain").getAll(), Names{L"servicesDomain"});
    EXPECT_EQ(getKeyNames(L"theme").getAll(), Names{L"theme"});
}

TEST(ConfigCatalogue, AKeyComparedWithTrueOrFalsePermitsOnlyThese) {
    for (const auto key : {allowUrlProvisioning, customizePhoneServer, customizeVoicemailServer, telephonyP2PEnabled,
                           certificateValidationEnabled}) {
        SCOPED_TRACE(KyrCoreUtils::toString(key));
        for (const auto* const permitted : {L"true", L"false", L"False", L"TRUE"}) {
            EXPECT_TRUE(permits(getRow(key), permitted));
        }
        for (const auto* const excluded : {L"", L"0", L"1", L"no", L" false", L"false "}) {
            EXPECT_FALSE(permits(getRow(key), excluded));
        }
        EXPECT_EQ(describePermittedValues(getRow(key)), R"("true" or "false")");
        EXPECT_EQ(describeKind(getRow(key).kind), "boolean");
    }
}

TEST(ConfigCatalogue, AKeyReadByToBoolPermitsTheSpellingsOfToBool) {
    for (const auto key : {lumoraSdkMode, telephonyEnabled, voicemailEnabled, meetingsEnabled}) {
        SCOPED_TRACE(KyrCoreUtils::toString(key));
        for (const auto permitted : getPermittedValues(getRow(key))) {
            EXPECT_TRUE(permits(getRow(key), permitted));
        }
        EXPECT_TRUE(permits(getRow(key), L" Yes "));
        EXPECT_FALSE(permits(getRow(key), L"ture"));
        EXPECT_FALSE(permits(getRow(key), L""));
    }
}

TEST(ConfigCatalogue, PermitsEveryTextThatToBoolReadsAsTrue) {
    const auto words = getPermittedValues(getRow(lumoraSdkMode));
    const auto isTrue = [](std::wstring_view word) { return KyrCoreUtils::toBool(word); };
    EXPECT_EQ(std::ranges::count_if(words, isTrue), 4);
    EXPECT_EQ(words.size(), 8U);
}

TEST(ConfigCatalogue, TheCalendarTypePermitsThreeNumbers) {
    const auto& row = getRow(L"CalendarIntegrationType");
    EXPECT_TRUE(permits(row, L"0"));
    EXPECT_TRUE(permits(row, L"2"));
    EXPECT_FALSE(permits(row, L"3"));
    EXPECT_FALSE(permits(row, L"true"));
    EXPECT_EQ(describePermittedValues(row), R"("0", "1" or "2")");
}

TEST(ConfigCatalogue, TheRecordOfStoresPermitsAListOfNamesWithPriorities) {
    const auto& row = getRow(primaryConfigStores);
    for (const auto* const permitted : {L"", L"PresenceConfigStore:31;TftpStore:41;", L"A:-1;", L"A:240"}) {
        EXPECT_TRUE(permits(row, permitted)) << KyrCoreUtils::toString(permitted);
    }
    for (const auto* const excluded : {L"A", L"A:", L"A:x;", L":1;", L"A:1;;", L"A:1:2;", L";"}) {
        EXPECT_FALSE(permits(row, excluded)) << KyrCoreUtils::toString(excluded);
    }
}

TEST(ConfigCatalogue, OtherKeysPermitAnyText) {
    for (const auto key : {productMode, servicesDomain, configRefetchInterval, meetingServerType}) {
        EXPECT_TRUE(permits(getRow(key), L""));
        EXPECT_TRUE(permits(getRow(key), L"any text"));
        EXPECT_EQ(describePermittedValues(getRow(key)), "any text");
    }
}

} // namespace
} // namespace ZelUnified::ConfigKeys
