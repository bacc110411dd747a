#pragma once

#include <string_view>

/// The names that the configuration system and its clients share: keys, store names, file names and a few fixed texts.
/// The spelling is fixed, including misspellings, because it is shown and written to files; keys are looked up
/// case-insensitively. Wide names are used with wide strings. Narrow names are file names, paths and store names. A
/// store name that is defined in one width is converted where it is compared in the other. A name without a remark is
/// used by the client's services but not by this library. `catalogue` in ConfigCatalogue.h lists all names.
namespace ZelUnified::ConfigKeys {

inline constexpr std::wstring_view additionalInfo = L"Addtional_Info"; // sensitive key
inline constexpr std::wstring_view connectionUserDn = L"ConnectionUserDn";
// sensitive key; also read by the registry store
inline constexpr std::wstring_view connectionPassword = L"connectionpassword";
inline constexpr std::wstring_view connectionUsername = L"connectionusername"; // sensitive key
// policy key that gates URL provisioning
inline constexpr std::wstring_view allowUrlProvisioning = L"AllowUrlProvisioning";
inline constexpr std::wstring_view brindleConfigStore = L"BrindleConfigStore";
// sensitive key; key of the directory connection
inline constexpr std::wstring_view bdiConnectionPassword = L"BDIConnectionPassword";
inline constexpr std::wstring_view bdiConnectionUserDn = L"BDIConnectionUserDn";     // sensitive key
inline constexpr std::wstring_view bdiConnectionUsername = L"BDIConnectionUsername"; // sensitive key
inline constexpr std::wstring_view blockVersionBelow = L"BlockVersionBelow";
inline constexpr std::string_view bootstrapConfigStore = "BootstrapConfigStore"; // name of the installer-provided store
inline constexpr std::wstring_view cachedBrindleConfigStoreFile = L"cachedBrindleConfigStore.dat";
inline constexpr std::wstring_view cachedPresenceConfigStoreFile = L"cachedPresenceConfigStore.dat";
inline constexpr std::string_view cachedTftpConfigStoreFile = "cachedTftpConfigStore.dat";
inline constexpr std::string_view cachedMirroxOrgOrGrpAdminConfigStoreFile = "cachedMirroxOrgOrGrpAdminConfigStore.dat";
inline constexpr std::string_view cacheDirectory = "Cache";          // name part of the cached stores and their files
inline constexpr std::wstring_view sabrelServer1 = L"SabrelServer1"; // removed under the server policy
inline constexpr std::wstring_view sabrelServer2 = L"SabrelServer2";
inline constexpr std::wstring_view sabrelServer3 = L"SabrelServer3";
inline constexpr std::wstring_view ccMode = L"CC_Mode";
inline constexpr std::string_view ciMigrationConfigStore = "CIMigrationConfigStore";
inline constexpr std::wstring_view configurationFile = L"configurationfile";
inline constexpr std::wstring_view ctiServer1 = L"CtiServer1"; // removed under the server policy
// store name compared by the adapter
inline constexpr std::wstring_view taviLyncRegistryConfigStore = L"TaviLyncRegistryConfigStore";
inline constexpr std::wstring_view customizePhoneServer = L"Customize_Phone_Server"; // removed under the server policy
// removed under the server policy
inline constexpr std::wstring_view customizeVoicemailServer = L"Customize_Voicemail_Server";
inline constexpr std::string_view configDefaultsFile = "lumora-config-defaults.xml"; // installer-provided defaults file
// name of the developer override store
inline constexpr std::string_view devOverrideConfigStore = "devOverrideConfigStore";
// user configuration file, outlives a reset
inline constexpr std::string_view configUserFile = "lumora-config-user.xml";
inline constexpr std::wstring_view edgeOnlyMode = L"EdgeOnlyMode";
inline constexpr std::wstring_view enableCallPickup = L"EnableCallPickup";
inline constexpr std::wstring_view enableGroupCallPickup = L"EnableGroupCallPickup";
inline constexpr std::wstring_view enableHuntGroup = L"EnableHuntGroup";
inline constexpr std::wstring_view enablePellumQmt = L"EnablePellumQmt";
inline constexpr std::wstring_view enableOtherGroupPickup = L"EnableOtherGroupPickup";
inline constexpr std::wstring_view initialInfo = L"Initial_Info"; // sensitive key
inline constexpr std::wstring_view invalidCertificateBehavior = L"InvalidCertificateBehavior";
inline constexpr std::wstring_view invalidCredentialsLogout = L"InvalidCredentialsLogout";
inline constexpr std::string_view inMemoryConfigStore = "InMemoryConfigStore"; // name of the volatile store
inline constexpr std::wstring_view ipMode = L"IP_MODE";
inline constexpr std::wstring_view lumoraSdkMode = L"Lumora_SDK_Mode"; // key read by the adapter for its SDK mode
inline constexpr std::wstring_view legacyOAuthLogout = L"LegacyOAuthLogout";
// backup file of the local file store
inline constexpr std::string_view localConfigBackupFile = "lumoraLocalConfig_backup.dat";
inline constexpr std::string_view localConfigFile = "lumoraLocalConfig.dat";     // file of the local file store
inline constexpr std::string_view localFileConfigStore = "LocalFileConfigStore"; // name of the local file store
inline constexpr std::wstring_view pellumQmtControlMode = L"PellumQmt_Control_Mode";
inline constexpr std::wstring_view pellumQmtFastLogin = L"PellumQmt_Fast_Login";
inline constexpr std::string_view mdmConfigStore = "MdmConfigStore"; // name of the MDM store
inline constexpr std::wstring_view maskText = L"*******";            // mask text of the shared header
inline constexpr std::wstring_view phoneMode = L"Phone_Mode";        // key read when the cached stores are set up
inline constexpr std::wstring_view presenceConfigStore = L"PresenceConfigStore"; // store name compared by the adapter
inline constexpr std::wstring_view preventDeclineOnHuntCall = L"PreventDeclineOnHuntCall";
// key that carries the cached stores and their priorities
inline constexpr std::wstring_view primaryConfigStores = L"PrimaryConfigStores";
inline constexpr std::wstring_view productMode = L"ProductMode"; // key read when the cached stores are set up
// registry path of the policy values
inline constexpr std::string_view policyRegistryPath =
    "Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC";
inline constexpr std::string_view registryConfigStore = "RegistryConfigStore"; // name of the registry store
inline constexpr std::wstring_view remoteDestinationEditingWithMultipleDevices =
    L"RemoteDestinationEditingWithMultipleDevices";
inline constexpr std::wstring_view remoteAccess = L"RemoteAccess";
inline constexpr std::wstring_view selfCareUrl = L"SelfCareURL";
inline constexpr std::wstring_view valueHidden = L"VALUE_HIDDEN"; // what logs show for the value of a sensitive key
inline constexpr std::wstring_view showSelfCarePortal = L"ShowSelfCarePortal";
inline constexpr std::wstring_view systemProxyUsage = L"SystemProxyUsage";
inline constexpr std::wstring_view teamsSsoSupport = L"Teams_SSO_Support";
inline constexpr std::wstring_view telephonyOnlyDiscovery = L"TelephonyOnlyDiscovery";
inline constexpr std::wstring_view telephonyP2PEnabled = L"Telephony_P2P_Enabled"; // forced to "false" in FIPS mode
inline constexpr std::string_view tftpConfigStore = "TFTPConfigStore";
inline constexpr std::wstring_view tftpNamePart = L"Tftp"; // name part by which the adapter tells a TFTP store
inline constexpr std::wstring_view tftpPrimaryServer = L"TFTPPrimaryServer"; // removed under the server policy
inline constexpr std::wstring_view tftpBackupServer1 = L"TFTPBackupServer1";
inline constexpr std::wstring_view tftpBackupServer2 = L"TFTPBackupServer2";
inline constexpr std::wstring_view garnNamePart = L"Garn"; // name part by which the adapter tells a call-manager store
inline constexpr std::wstring_view servicesDomain = L"ServicesDomain"; // key handled by URL provisioning
inline constexpr std::wstring_view serviceDiscoveryExcludedServices = L"ServiceDiscoveryExcludedServices";
inline constexpr std::wstring_view servicesDomainSsoEmailPrompt = L"ServicesDomainSsoEmailPrompt";
inline constexpr std::wstring_view telephonyEnabled = L"Telephony_Enabled";
inline constexpr std::wstring_view telemetryEnabled = L"TelemetryEnabled";
inline constexpr std::wstring_view ssoEnabled = L"sso_enabled";
inline constexpr std::wstring_view edgeSsoPrecedence = L"EdgeSsoPrecedence";
inline constexpr std::wstring_view meetingsEnabled = L"Meetings_Enabled";
inline constexpr std::wstring_view alphaP2PEnabled = L"alphap2penabled";
inline constexpr std::wstring_view enablePrtEncryption = L"EnablePRTEncryption";
inline constexpr std::wstring_view prtCertificateName = L"PRTCertificateName";
inline constexpr std::wstring_view diagnosticsToolEnabled = L"DiagnosticsToolEnabled";
inline constexpr std::wstring_view contactsDiagnosticsToolEnabled = L"ContactsDiagnosticsToolEnabled";
inline constexpr std::wstring_view startupAuthenticationRequired = L"STARTUP_AUTHENTICATION_REQUIRED";
inline constexpr std::wstring_view configRefetchInterval = L"ConfigRefetchInterval";
inline constexpr std::wstring_view enableUserIdUrlEscape = L"EnableUserIdURLEscape";
inline constexpr std::wstring_view allowTeamsUseEmbeddedSafari = L"AllowTeamsUseEmbeddedSafari";
// name of the URL provisioning store
inline constexpr std::string_view urlProvisioningConfigStore = "UrlProvisioningConfigStore";
inline constexpr std::wstring_view userDefinedRemoteDestinations = L"UserDefinedRemoteDestinations";
inline constexpr std::wstring_view voicemailPrimaryServer = L"VoicemailPrimaryServer";
inline constexpr std::wstring_view vvmMailstoreServer0 = L"VVM_Mailstore_Server_0";
inline constexpr std::wstring_view voiceServicesDomain = L"VoiceServicesDomain";
inline constexpr std::wstring_view meetingListOfflineData = L"Mrx_MeetingList_OfflineData"; // sensitive key
inline constexpr std::wstring_view meetingListOnlineData = L"Mrx_MeetingList_OnlineData";   // sensitive key
inline constexpr std::string_view mirroxOrgOrGrpAdminConfigStore = "MirroxOrgOrGrpAdminConfigStore";
// read by the registry and XML stores
inline constexpr std::wstring_view certificateValidationEnabled = L"CertificateValidationEnabled";

} // namespace ZelUnified::ConfigKeys
