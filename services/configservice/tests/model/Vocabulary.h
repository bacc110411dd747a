#pragma once

#include "ByteSource.h"
#include "ModelStore.h"

#include <limits>
#include <string>

/// What the generators choose from: few words, so that they meet.
namespace config_model::vocabulary {

inline const std::wstring keys[] = {
    L"TftpServer1", L"TFTPPrimaryServer", L"tftpserver1", L"TFTPPRIMARYSERVER",     L"CtiServer1",
    L"Zed",         L"zed",               L"alpha",       L"_mark",                 L"CTIPrimaryServer",
    L"",            L"omega",             L"ALPHA",       L"Telephony_P2P_Enabled",
};

inline const std::wstring values[] = {L"one", L"two", L"", L"ONE", L"false", L"three"};

inline const int priorities[] = {10, 20, 33, 33, 40, 499, 600, std::numeric_limits<int>::max()};

inline const std::string storeNames[] = {
    "LocalFileConfigStore",   "InMemoryConfigStore",        "RegistryConfigStore",        "MdmConfigStore",
    "mdmCONFIGstore",         "UrlProvisioningConfigStore", "urlPROVISIONINGconfigstore", "devOverrideConfigStore",
    "DEVoverrideCONFIGstore", "lumora-config-defaults.xml", "BootstrapConfigStore",       "Alpha",
    "ALPHA",                  "cachedAlpha.dat",            "cachedBeta.xml",             "Beta",
};

inline const std::string placedFiles[] = {
    "cachedAlpha.dat", "cachedALPHA.dat", "cachedBeta.xml", "cachedBeta.dat", "plain", "other.txt", "Alpha.xml",
};

inline const std::string removedFiles[] = {
    "cachedAlpha.dat", "cachedALPHA.dat", "cachedBeta.xml", "cachedBeta.dat", "plain", "other.txt", "Alpha.xml",
    "cachedUrlProvisioningConfigStore.dat",
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

inline Pairs choosePairs(ByteSource& bytes, std::size_t most) {
    Pairs pairs;
    for (auto count = bytes.below(most + 1); count > 0; --count) {
        const auto& key = bytes.pick(keys);
        pairs.emplace_back(key, bytes.pick(values));
    }
    return pairs;
}

} // namespace config_model::vocabulary
