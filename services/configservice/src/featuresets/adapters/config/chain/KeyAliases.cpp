#include "KeyAliases.h"

#include <utility>

namespace ZelUnified {

KeyAliases::KeyAliases()
    : keyAliases(ConfigMap{
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
          // Stores and clients use the misspelt name.
          {L"VVM_Mailstore_PollingInterval", L"VoicmeailPollingInterval"},
          {L"DockedWindowVisible", L"DockedWindow"},
          {L"contactListView", L"ShowContactPictures"},
          {L"EnableSipProtocolHandler", L"EnableSIPProtocol"},
          {L"EnableTelProtocolHandler", L"EnableTelProtocol"},
          {L"EnableImProtocolHandler", L"EnableIMProtocol"},
          {L"PresenceServerType", L"DiscoveredPresenceServerType"},
      }) {
    ConfigMap oldNames;
    for (const auto& [oldName, newName] : getKeyAliases()) {
        oldNames.insert_or_assign(newName, oldName);
    }
    legacyKeys = KeySuccessors(std::move(oldNames));
}

} // namespace ZelUnified
