#pragma once

#include <ConfigKeys.h>

#include <array>
#include <string_view>

namespace ZelUnified::ConfigKeys {

/// One row of the catalogue: a text in the one width in which it is used. The other width is empty.
struct CatalogueEntry {
    // NOLINTBEGIN(google-explicit-constructor): a row is the name alone.
    constexpr CatalogueEntry(std::wstring_view text) : wide(text) {}
    constexpr CatalogueEntry(std::string_view text) : narrow(text) {}
    // NOLINTEND(google-explicit-constructor)

    constexpr bool isWide() const { return !wide.empty(); }

    std::wstring_view wide;
    std::string_view narrow;
};

/// All names in their order. A new name is a constant in ConfigKeys.h and a row here.
inline constexpr std::array<CatalogueEntry, 97> catalogue{{
    additionalInfo,
    connectionUserDn,
    connectionPassword,
    connectionUsername,
    allowUrlProvisioning,
    brindleConfigStore,
    bdiConnectionPassword,
    bdiConnectionUserDn,
    bdiConnectionUsername,
    blockVersionBelow,
    bootstrapConfigStore,
    cachedBrindleConfigStoreFile,
    cachedPresenceConfigStoreFile,
    cachedTftpConfigStoreFile,
    cachedMirroxOrgOrGrpAdminConfigStoreFile,
    cacheDirectory,
    sabrelServer1,
    sabrelServer2,
    sabrelServer3,
    ccMode,
    ciMigrationConfigStore,
    configurationFile,
    ctiServer1,
    taviLyncRegistryConfigStore,
    customizePhoneServer,
    customizeVoicemailServer,
    configDefaultsFile,
    devOverrideConfigStore,
    configUserFile,
    edgeOnlyMode,
    enableCallPickup,
    enableGroupCallPickup,
    enableHuntGroup,
    enablePellumQmt,
    enableOtherGroupPickup,
    initialInfo,
    invalidCertificateBehavior,
    invalidCredentialsLogout,
    inMemoryConfigStore,
    ipMode,
    lumoraSdkMode,
    legacyOAuthLogout,
    localConfigBackupFile,
    localConfigFile,
    localFileConfigStore,
    pellumQmtControlMode,
    pellumQmtFastLogin,
    mdmConfigStore,
    maskText,
    phoneMode,
    presenceConfigStore,
    preventDeclineOnHuntCall,
    primaryConfigStores,
    productMode,
    policyRegistryPath,
    registryConfigStore,
    remoteDestinationEditingWithMultipleDevices,
    remoteAccess,
    selfCareUrl,
    valueHidden,
    showSelfCarePortal,
    systemProxyUsage,
    teamsSsoSupport,
    telephonyOnlyDiscovery,
    telephonyP2PEnabled,
    tftpConfigStore,
    tftpNamePart,
    tftpPrimaryServer,
    tftpBackupServer1,
    tftpBackupServer2,
    garnNamePart,
    servicesDomain,
    serviceDiscoveryExcludedServices,
    servicesDomainSsoEmailPrompt,
    telephonyEnabled,
    telemetryEnabled,
    ssoEnabled,
    edgeSsoPrecedence,
    meetingsEnabled,
    alphaP2PEnabled,
    enablePrtEncryption,
    prtCertificateName,
    diagnosticsToolEnabled,
    contactsDiagnosticsToolEnabled,
    startupAuthenticationRequired,
    configRefetchInterval,
    enableUserIdUrlEscape,
    allowTeamsUseEmbeddedSafari,
    urlProvisioningConfigStore,
    userDefinedRemoteDestinations,
    voicemailPrimaryServer,
    vvmMailstoreServer0,
    voiceServicesDomain,
    meetingListOfflineData,
    meetingListOnlineData,
    mirroxOrgOrGrpAdminConfigStore,
    certificateValidationEnabled,
}};

} // namespace ZelUnified::ConfigKeys
