#pragma once

#include "ByteSource.h"
#include "ModelStore.h"

#include <limits>
#include <string>

/// The words of the generators: few, so that equal ones meet.
namespace config_model::vocabulary {

/// Returns the name or, where names of files that differ only in their case are the same, another one. The copies of
/// two stores would be one file there.
inline const char* unlessFilesIgnoreCase([[maybe_unused]] const char* name, [[maybe_unused]] const char* other) {
#ifdef LUMORA_FILE_NAMES_IGNORE_CASE
    return other;
#else
    return name;
#endif
}

inline const std::wstring keys[] = {
    L"TftpServer1",
    L"TFTPPrimaryServer",
    L"tftpserver1",
    L"TFTPPRIMARYSERVER",
    L"CtiServer1",
    L"Zed",
    L"zed",
    L"alpha",
    L"_mark",
    L"CTIPrimaryServer",
    L"",
    L"omega",
    L"ALPHA",
    L"Telephony_P2P_Enabled",
};

inline const std::wstring values[] = {L"one", L"two", L"", L"ONE", L"false", L"three"};

inline const int priorities[] = {10, 20, 33, 33, 40, 499, 600, std::numeric_limits<int>::max()};

inline const std::string storeNames[] = {
    "LocalFileConfigStore",
    "InMemoryConfigStore",
    "RegistryConfigStore",
    "MdmConfigStore",
    "mdmCONFIGstore",
    "UrlProvisioningConfigStore",
    unlessFilesIgnoreCase("urlPROVISIONINGconfigstore", "UrlProvisioningConfigStore"),
    "devOverrideConfigStore",
    "DEVoverrideCONFIGstore",
    "lumora-config-defaults.xml",
    "BootstrapConfigStore",
    "Alpha",
    unlessFilesIgnoreCase("ALPHA", "Gamma"),
    "cachedAlpha.dat",
    "cachedBeta.xml",
    "Beta",
    "/../Away",
    "../Near",
};

inline const std::string placedFiles[] = {
    "cachedAlpha.dat", unlessFilesIgnoreCase("cachedALPHA.dat", "cachedGamma.dat"),
    "cachedBeta.xml",  "cachedBeta.dat",
    "plain",           "other.txt",
    "Alpha.xml",
};

inline const std::string removedFiles[] = {
    "cachedAlpha.dat", unlessFilesIgnoreCase("cachedALPHA.dat", "cachedGamma.dat"),
    "cachedBeta.xml",  "cachedBeta.dat",
    "plain",           "other.txt",
    "Alpha.xml",       "cachedUrlProvisioningConfigStore.dat",
    "../outside.dat",  "cached../Near.dat",
};

inline const std::wstring urls[] = {
    L"app://open?ServicesDomain=one&foreign=two",
    L"app://open?ip_mode=two&&",
    L"app://open?Telephony_P2P_Enabled=true&TELEPHONY_p2p_enabled= three ",
    L"app://open?ServicesDomain",
    L"app://open?ServicesDomain=a=b",
    L"app://open?sso_enabled=&EdgeOnlyMode=one?x",
    L"app://open",
    L"",
};

// For the whole service. The keys are valid names of elements.

inline const std::wstring serviceKeys[] = {
    L"TftpServer1",
    L"TFTPPrimaryServer",
    L"CtiServer1",
    L"CTIPRIMARYSERVER",
    L"SabrelServer1",
    L"VVM_Mailstore_Server_0",
    L"VoicemailPrimaryServer",
    L"Zed",
    L"ZED",
    L"_mark",
    L"Telephony_P2P_Enabled",
    L"AllowUrlProvisioning",
    L"Telephony_Enabled",
    L"Meetings_Enabled",
    L"Meeting_Server_Address",
    L"Meeting_Server_Type_Backup",
    L"Meeting_Server_Address_Backup",
    L"Customize_Phone_Server",
    L"Customize_Voicemail_Server",
    L"ProductMode",
    L"Lumora_SDK_Mode",
    L"CertificateValidationEnabled",
};

inline const std::wstring serviceValues[] = {L"one", L"two", L"", L"ONE", L"false", L"True", L"Phone_Mode", L"mirrox"};

inline const std::wstring records[] = {
    L"Alpha:41;",           L"A:abc;B;", L"PresenceConfigStore:31;TftpStore:41;", L"alpha:5;::;;", L"MyTftpStore:7",
    L"/../Away:7;Alpha:9;", L"",
};

inline const std::string serviceStores[] = {
    "Alpha",
    unlessFilesIgnoreCase("ALPHA", "Gamma"),
    "TftpStore",
    "GarnStore",
    "PresenceConfigStore",
    "TaviLyncRegistryConfigStore",
    "UrlProvisioningConfigStore",
    "MdmConfigStore",
    "LocalFileConfigStore",
    "InMemoryConfigStore",
    "RegistryConfigStore",
    "BrindleConfigStore",
    "/../Away",
    "lumora-config-defaults.xml",
};

/// New names and keys without an old name: no record has an old name.
inline const std::wstring watchedRecords[] = {
    L"TFTPPrimaryServer",
    L"CTIPrimaryServer",
    L"DeviceAuthenticationPrimaryServer",
    L"VoicemailPrimaryServer",
    L"Zed",
    L"_mark",
    L"Telephony_P2P_Enabled",
    L"AllowUrlProvisioning",
    L"Telephony_Enabled",
    L"Voicemail_Enabled",
    L"Meetings_Enabled",
    L"Meeting_Server_Address",
    L"Customize_Phone_Server",
    L"ProductMode",
    L"Lumora_SDK_Mode",
    L"CertificateValidationEnabled",
    L"PrimaryConfigStores",
    L"ServicesDomain",
};

inline const Pairs defaults = {
    {L"telephony_enabled", L"true"},
    {L"voicemail_enabled", L""},
    {L"meetings_enabled", L"false"},
    {L"zed", L"shipped"},
    {L"ctiserver1", L""},
};

inline Pairs choosePairs(ByteSource& bytes, std::size_t most) {
    Pairs pairs;
    for (auto count = bytes.below(most + 1); count > 0; --count) {
        const auto& key = bytes.pick(keys);
        pairs.emplace_back(key, bytes.pick(values));
    }
    return pairs;
}

} // namespace config_model::vocabulary
