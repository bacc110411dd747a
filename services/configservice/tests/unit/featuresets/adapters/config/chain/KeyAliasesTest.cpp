#include "featuresets/adapters/config/chain/KeyAliases.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace ZelUnified {

TEST(KeyAliases, EveryRenamedKeyIsKnownBothWays) {
    const std::vector<std::pair<std::wstring, std::wstring>> renamed{
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
    const KeyAliases aliases;
    EXPECT_EQ(aliases.getKeyAliases().size(), renamed.size());
    for (const auto& [oldName, newName] : renamed) {
        ASSERT_NE(aliases.lookupKeyAlias(oldName), nullptr);
        ASSERT_NE(aliases.lookupLegacyKey(newName), nullptr);
        EXPECT_EQ(*aliases.lookupKeyAlias(oldName), newName);
        EXPECT_EQ(*aliases.lookupLegacyKey(newName), oldName);
    }
}

TEST(KeyAliases, NamesAreFoundIgnoringCaseAndOneWayOnly) {
    const KeyAliases aliases;
    EXPECT_NE(aliases.lookupKeyAlias(L"TFTPSERVER1"), nullptr);
    EXPECT_EQ(aliases.lookupKeyAlias(L"TFTPPrimaryServer"), nullptr);
    EXPECT_EQ(aliases.lookupLegacyKey(L"TftpServer1"), nullptr);
}

} // namespace ZelUnified
