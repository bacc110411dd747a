#include "KeyNames.h"

#include "ModelStore.h"

#include <utility>

namespace config_model {

namespace {

const std::pair<std::wstring, std::wstring> oldAndNewNames[] = {
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

} // namespace

std::wstring findNewName(const std::wstring& key) {
    for (const auto& [oldName, newName] : oldAndNewNames) {
        if (isSame(oldName, key)) {
            return newName;
        }
    }
    return L"";
}

std::wstring findOldName(const std::wstring& key) {
    for (const auto& [oldName, newName] : oldAndNewNames) {
        if (isSame(newName, key)) {
            return oldName;
        }
    }
    return L"";
}

} // namespace config_model
