#include "ConfigAdapterFixture.h"

#include <SensitivePolicies.h>

namespace ZelUnified {

class SensitivePolicies : public ConfigAdapterFixture {};

TEST_F(SensitivePolicies, AreThoseWhoseNameContainsThePasswordsName) {
    for (const auto* key : {L"ConnectionPasswordOfVoicemail", L"MyCONNECTIONPASSWORD", L"ConnectionUser"}) {
        givenPolicy(key, L"v");
    }
    givenDefaults({{L"DefaultConnectionPassword", L"v"}});
    load();
    EXPECT_FALSE(adapter->isKeySensitive(L"ConnectionPasswordOfVoicemail"));
    markSensitivePolicies(*adapter);
    EXPECT_TRUE(adapter->isKeySensitive(L"connectionpasswordofvoicemail"));
    EXPECT_TRUE(adapter->isKeySensitive(L"MyConnectionPassword"));
    EXPECT_FALSE(adapter->isKeySensitive(L"ConnectionUser"));
    EXPECT_FALSE(adapter->isKeySensitive(L"DefaultConnectionPassword")) << "no policy";
}

} // namespace ZelUnified
