#include "featuresets/adapters/config/chain/UrlProvisioningData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

TEST(UrlProvisioningData, AcceptsOnlyTheAllowedKeys) {
    EXPECT_THAT(parseUrlProvisioningData(L"app://x?ServicesDomain=example.com&Foreign=1"),
                ElementsAre(Pair(L"ServicesDomain", L"example.com")));
}

TEST(UrlProvisioningData, AllowsTwentyThreeKeysInAnyCase) {
    const auto settings = parseUrlProvisioningData(
        L"?servicesdomain=1&VOICESERVICESDOMAIN=1&ServiceDiscoveryExcludedServices=1&ServicesDomainSsoEmailPrompt=1"
        L"&Telephony_Enabled=1&TelemetryEnabled=1&sso_enabled=1&EdgeSsoPrecedence=1&Meetings_Enabled=1"
        L"&Telephony_P2P_Enabled=1&alphap2penabled=1&InvalidCertificateBehavior=1&EnablePRTEncryption=1"
        L"&PRTCertificateName=1&IP_MODE=1&SystemProxyUsage=1&DiagnosticsToolEnabled=1"
        L"&ContactsDiagnosticsToolEnabled=1&STARTUP_AUTHENTICATION_REQUIRED=1&ConfigRefetchInterval=1"
        L"&EnableUserIdURLEscape=1&EdgeOnlyMode=1&AllowTeamsUseEmbeddedSafari=1");
    EXPECT_THAT(settings, SizeIs(23));
    EXPECT_EQ(settings.begin()->first, L"AllowTeamsUseEmbeddedSafari");
    EXPECT_EQ(settings.find(L"ServicesDomain")->first, L"servicesdomain");
}

TEST(UrlProvisioningData, EmptyPartsAreDropped) {
    EXPECT_THAT(parseUrlProvisioningData(L"?ServicesDomain=a&&"), ElementsAre(Pair(L"ServicesDomain", L"a")));
}

TEST(UrlProvisioningData, APairContainsExactlyOneEqualsSign) {
    EXPECT_THAT(parseUrlProvisioningData(L"?ServicesDomain"), IsEmpty());
    EXPECT_THAT(parseUrlProvisioningData(L"?ServicesDomain=a=b&IP_MODE=4"), ElementsAre(Pair(L"IP_MODE", L"4")));
}

TEST(UrlProvisioningData, AnEmptyValueIsKeptAndAnEmptyKeyIsDropped) {
    EXPECT_THAT(parseUrlProvisioningData(L"?ServicesDomain=& =x"), ElementsAre(Pair(L"ServicesDomain", L"")));
}

TEST(UrlProvisioningData, PiecesAreTrimmedAndNotDecoded) {
    EXPECT_THAT(parseUrlProvisioningData(L"? ServicesDomain = a%20b+c#d "),
                ElementsAre(Pair(L"ServicesDomain", L"a%20b+c#d")));
}

TEST(UrlProvisioningData, ARepeatedKeyHasItsLastValueAndFirstSpelling) {
    EXPECT_THAT(parseUrlProvisioningData(L"?ip_mode=4&IP_MODE=6"), ElementsAre(Pair(L"ip_mode", L"6")));
}

TEST(UrlProvisioningData, OnlyTheFirstQuestionMarkIsASeparator) {
    EXPECT_THAT(parseUrlProvisioningData(L"?ServicesDomain=a?b"), ElementsAre(Pair(L"ServicesDomain", L"a?b")));
    EXPECT_THAT(parseUrlProvisioningData(L"ServicesDomain=a"), IsEmpty());
    EXPECT_THAT(parseUrlProvisioningData(L"app://x?"), IsEmpty());
    EXPECT_THAT(parseUrlProvisioningData(L""), IsEmpty());
}

TEST(UrlProvisioningData, AUrlOfMoreThan999CharactersIsRefused) {
    const std::wstring head = L"?ServicesDomain=";
    EXPECT_THAT(parseUrlProvisioningData(head + std::wstring(999 - head.size(), L'x')), SizeIs(1));
    EXPECT_THAT(parseUrlProvisioningData(head + std::wstring(1000 - head.size(), L'x')), IsEmpty());
}

} // namespace ZelUnified
