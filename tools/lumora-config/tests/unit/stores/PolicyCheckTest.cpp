#include "stores/PolicyCheck.h"

#include <gmock/gmock.h>

namespace lumora_config {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using Kind = PolicyRemark::Kind;

const std::string policy = "Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC";

std::vector<PolicyRemark> examine(const std::string& path, const std::string& lines) {
    const auto text = zel::registry::parseRegistryText("REGEDIT4\n[HKEY_CURRENT_USER\\" + path + "]\n" + lines,
                                                       zel::registry::HKEY_CURRENT_USER);
    EXPECT_THAT(text.refusals, IsEmpty());
    return PolicyCheck::examine(text.sections);
}

} // namespace

TEST(PolicyCheck, AValidPolicyHasNoRemarks) {
    EXPECT_THAT(examine(policy,
                        "\"TelemetryEnabled\"=\"false\"\n\"allowurlprovisioning\"=\"FALSE\"\n\"TftpServer1\"=\"a\"\n"
                        "\"Anything\"=-\n[-HKEY_CURRENT_USER\\Software\\Policies]\n"),
                IsEmpty());
    EXPECT_THAT(examine(policy + "\\Sub", "\"TelemetryEnabled\"=\"false\"\n"), IsEmpty());
}

TEST(PolicyCheck, AnUnknownKeyIsNamedWithTheKeysThatItResembles) {
    const auto remarks = examine(policy, "\"TelemetryEnabeld\"=\"false\"\n\"SomethingElseEntirely\"=\"1\"\n@=\"1\"\n");
    ASSERT_THAT(remarks, SizeIs(3));
    EXPECT_EQ(remarks[0].line, 3U);
    EXPECT_EQ(remarks[0].text, "the key 'TelemetryEnabeld' is unknown; did you mean 'TelemetryEnabled'?");
    EXPECT_EQ(remarks[0].kind, Kind::MistypedKey);
    EXPECT_EQ(remarks[1].text, "the key 'SomethingElseEntirely' is unknown");
    EXPECT_EQ(remarks[1].kind, Kind::UnknownKey);
    EXPECT_EQ(remarks[2].text, "the key '@' is unknown");
}

TEST(PolicyCheck, AMistypedOldNameIsFound) {
    const auto remarks = examine(policy, "\"TftpSrever1\"=\"a\"\n");
    ASSERT_THAT(remarks, SizeIs(1));
    EXPECT_THAT(remarks[0].text, HasSubstr("'TftpServer1'"));
}

TEST(PolicyCheck, AValueThatTheKindExcludesIsNamedWithThePermittedOnes) {
    const auto remarks = examine(policy, "\"allowurlprovisioning\"=dword:0\n");
    ASSERT_THAT(remarks, SizeIs(1));
    EXPECT_EQ(remarks[0].text, "the value of the key 'AllowUrlProvisioning' must be \"true\" or \"false\"");
    EXPECT_EQ(remarks[0].kind, Kind::Ineffective);
}

TEST(PolicyCheck, AValueOfATypeThatTheClientDoesNotReadIsNamed) {
    const auto remarks = examine(policy, "\"TelemetryEnabled\"=hex:01\n\"Theme\"=hex(b):01,00,00,00,00,00,00,00\n");
    ASSERT_THAT(remarks, SizeIs(2));
    EXPECT_THAT(remarks[0].text, HasSubstr("has a type that the client does not read"));
    EXPECT_EQ(remarks[0].kind, Kind::Ineffective);
    EXPECT_EQ(remarks[1].line, 4U);
}

TEST(PolicyCheck, AKeyThatResemblesThePolicyKeyIsNeverInForce) {
    for (const std::string path : {"Software\\Policies\\Ventrix Systems Inc.\\Unified Communications\\VentrixUC",
                                   "Software\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC\\Sub",
                                   "Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications",
                                   "Policies\\Ventrix Systems, Inc.\\VentrixUC",
                                   "Software\\Policies\\Ventrix Systems, Inc.\\Unified Comunications\\VentrixUC"}) {
        const auto remarks = examine(path, "\"TelemetryEnabled\"=\"false\"\n");
        ASSERT_THAT(remarks, SizeIs(1)) << path;
        EXPECT_EQ(remarks[0].line, 2U);
        EXPECT_EQ(remarks[0].kind, Kind::Ineffective);
        EXPECT_EQ(remarks[0].text, "not the client's policy key, so its values are never in force; did you mean "
                                   "'HKEY_CURRENT_USER\\" +
                                       policy + "'?");
    }
}

TEST(PolicyCheck, KeysOfOtherProgramsAreNotExamined) {
    for (const std::string path : {"Software\\Policies\\Other\\Product",
                                   "Software\\Policies\\Ventrix Systems, Inc.\\Paint", "Software\\Clients\\Mail", ""}) {
        EXPECT_THAT(examine(path, "\"TelemetryEnabeld\"=\"false\"\n"), IsEmpty()) << path;
    }
    EXPECT_THAT(examine("Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications", ""), IsEmpty());
}

TEST(PolicyCheck, NoValueIsQuoted) {
    for (const auto& remark :
         examine(policy, "\"AllowUrlProvisioning\"=\"planted\"\n\"connectionpasswrd\"=\"planted\"\n")) {
        EXPECT_THAT(remark.text, Not(HasSubstr("planted")));
    }
}

} // namespace lumora_config
