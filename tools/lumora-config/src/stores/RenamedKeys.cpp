#include "RenamedKeys.h"

#include <kyr/StringUtils.h>

#include <array>

namespace lumora_config {

namespace {

struct Renaming {
    std::wstring_view earlier;
    std::wstring_view current;
};

constexpr std::array renamings{
    Renaming{L"Start_Client_On_Start_OS", L"LaunchOnSystemStartup"},
    Renaming{L"TftpServer1", L"TFTPPrimaryServer"},
    Renaming{L"TftpServer2", L"TFTPBackupServer1"},
    Renaming{L"TftpServer3", L"TFTPBackupServer2"},
    Renaming{L"CtiServer1", L"CTIPrimaryServer"},
    Renaming{L"CtiServer2", L"CTIBackupServer"},
    Renaming{L"SabrelServer1", L"DeviceAuthenticationPrimaryServer"},
    Renaming{L"SabrelServer2", L"DeviceAuthenticationBackupServer"},
    Renaming{L"VVM_Mailstore_Server_0", L"VoicemailPrimaryServer"},
    Renaming{L"VVM_Mailstore_Server_1", L"VoicemailBackup1Server"},
    Renaming{L"VVM_Mailstore_Server_2", L"VoicemailBackup2Server"},
    Renaming{L"VVM_Mailstore_PollingInterval", L"VoicmeailPollingInterval"},
    Renaming{L"DockedWindowVisible", L"DockedWindow"},
    Renaming{L"contactListView", L"ShowContactPictures"},
    Renaming{L"EnableSipProtocolHandler", L"EnableSIPProtocol"},
    Renaming{L"EnableTelProtocolHandler", L"EnableTelProtocol"},
    Renaming{L"EnableImProtocolHandler", L"EnableIMProtocol"},
    Renaming{L"PresenceServerType", L"DiscoveredPresenceServerType"},
};

} // namespace

std::vector<std::wstring> KeyNames::getAll() const {
    if (!earlier) {
        return {current};
    }
    return {current, *earlier};
}

KeyNames namesOf(std::wstring_view key) {
    for (const auto& renaming : renamings) {
        const bool byEarlierName = KyrCoreUtils::caseInsensitiveStringEquals(key, renaming.earlier);
        if (byEarlierName || KyrCoreUtils::caseInsensitiveStringEquals(key, renaming.current)) {
            return {std::wstring(renaming.current), std::wstring(renaming.earlier), byEarlierName};
        }
    }
    return {std::wstring(key), std::nullopt, false};
}

} // namespace lumora_config
