#include "ConfigStoreManagerFixture.h"
#include "secure/SecureString.h"

#include <zel/EncryptFileUtils.h>
#include <zel/FipsUtils.h>

#include <CacheConfigStore.h>
#include <TemporaryProfile.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ConfigReport : public ConfigStoreManagerFixture {
protected:
    ~ConfigReport() override { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }

    std::string report() {
        std::wstring text = L"before";
        manager.getConfigForPRT(text);
        return KyrCoreUtils::toString(text);
    }
    void givenDataFile(const std::string& name, const std::string& content) {
        ASSERT_TRUE(zel::storage::EncryptFileUtils::writeDataToFile(
            (profile.config() / name).string(), zel::SecureString(content), zel::storage::FileCategoryType::UserData));
    }

    static constexpr const char* head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<AllConfigs>\n";
    testing_host::TemporaryProfile profile;
};

TEST_F(ConfigReport, OfAnEmptyChainContainsAnEmptyElement) {
    EXPECT_EQ(report(), std::string(head) + "<AllMemoryConfigs/>\n\n</AllConfigs>");
}

TEST_F(ConfigReport, ContainsTheValuesOfEveryStoreInChainOrder) {
    given(makeReadOnlyStore("Late", 500, {{L"k", L"late"}}));
    given(makeReadOnlyStore("Early", 20, {{L"k", L"<&>"}, {L"empty", L""}}));
    EXPECT_EQ(report(), std::string(head) + "<AllMemoryConfigs>\n"
                                            " <store name=\"Early\" priority=\"20\">\n"
                                            "  <empty></empty>\n"
                                            "  <k>&lt;&amp;&gt;</k>\n"
                                            " </store>\n"
                                            " <store name=\"Late\" priority=\"500\">\n"
                                            "  <k>late</k>\n"
                                            " </store>\n"
                                            "</AllMemoryConfigs>\n"
                                            "\n</AllConfigs>");
}

TEST_F(ConfigReport, OmitsTheStoreWithTheDefaultsExactNameAndStoresWithoutKeys) {
    given(makeReadOnlyStore("lumora-config-defaults.xml", 900, {{L"k", L"v"}}));
    given(makeReadOnlyStore("Empty", 20));
    EXPECT_THAT(report(), HasSubstr("<AllMemoryConfigs/>"));
    given(makeReadOnlyStore("Lumora-Config-Defaults.XML2", 901, {{L"k", L"v"}}));
    EXPECT_THAT(report(), HasSubstr("Lumora-Config-Defaults.XML2"));
}

TEST_F(ConfigReport, ASensitiveKeyHasNeitherElementNorPlaceholder) {
    manager.setKeySensitive(L"secret");
    given(makeReadOnlyStore("S", 20, {{L"Secret", L"hunter2"}}));
    const auto text = report();
    EXPECT_THAT(text, HasSubstr("<store name=\"S\" priority=\"20\"/>"));
    EXPECT_THAT(text, Not(HasSubstr("hunter2")));
    EXPECT_THAT(text, Not(HasSubstr("VALUE_HIDDEN")));
}

TEST_F(ConfigReport, ContainsTheKeysAfterASensitiveOne) {
    manager.setKeySensitive(L"secret");
    given(makeReadOnlyStore("S", 20, {{L"secret", L"hunter2"}, {L"visible", L"v"}}));
    EXPECT_THAT(report(), HasSubstr("<visible>v</visible>"));
}

TEST_F(ConfigReport, ReplacesIllegalCharactersOfValues) {
    given(makeReadOnlyStore("S", 20,
                            {{L"k", std::wstring(L"a\x01"
                                                 L"b")}}));
    EXPECT_THAT(report(), HasSubstr("<k>a\xEF\xBF\xBD"
                                    "b</k>"));
}

TEST_F(ConfigReport, AppendsTheDataFilesWithoutTheirDeclarations) {
    givenDataFile("home-fenn-info.dat", "<?xml version=\"1.0\"?><home/>");
    givenDataFile("SSOAuthInfoStore.dat", "<?xml version=\"1.0\"?>\n<sso/>");
    EXPECT_THAT(report(), testing::EndsWith("<AllMemoryConfigs/>\n<home/>\n<sso/>\n</AllConfigs>"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("Failed to read config file " + (profile.config() / "service-location.dat").string()));
}

TEST_F(ConfigReport, ADataFileWithoutADeclarationLosesItsFirstCharacter) {
    givenDataFile("service-location.dat", "<where/>");
    EXPECT_THAT(report(), HasSubstr(">\nwhere/>\n</AllConfigs>"));
}

TEST_F(ConfigReport, ADeclarationMarkBeforePositionTwoIsIgnored) {
    givenDataFile("home-fenn-info.dat", "?>zero");
    givenDataFile("service-location.dat", "x?>one");
    givenDataFile("SSOAuthInfoStore.dat", "xy?>two");
    EXPECT_THAT(report(), HasSubstr(">\n?>zerox?>onetwo\n"));
}

TEST_F(ConfigReport, AnEmptyDataFileIsLeftOut) {
    testing_host::writeFile(profile.config() / "service-location.dat", "");
    givenDataFile("SSOAuthInfoStore.dat", "<?xml?>rest");
    EXPECT_THAT(report(), HasSubstr(">\nrest\n"));
}

TEST_F(ConfigReport, ContainsAStoreWithTheDefaultsNameInAnotherCase) {
    given(makeReadOnlyStore("Lumora-Config-Defaults.xml", 900, {{L"k", L"v"}}));
    EXPECT_THAT(report(), HasSubstr(" <store name=\"Lumora-Config-Defaults.xml\" priority=\"900\">\n  <k>v</k>\n"));
}

TEST_F(ConfigReport, ContainsTheValuesThatEachStoreReturns) {
    ConfigMap values{
        {L"before", L"1"}, {L"CertificateValidationEnabled", L"true"}, {L"Telephony_P2P_Enabled", L"true"}};
    given(std::make_shared<CacheConfigStore>("Downloaded", 40, (profile.root() / "copy.dat").string(), values));
    zel::common::FipsUtils::overrideFipsMode(true);
    EXPECT_THAT(report(), HasSubstr(" <store name=\"Downloaded\" priority=\"40\">\n"
                                    "  <before>1</before>\n"
                                    "  <CertificateValidationEnabled></CertificateValidationEnabled>\n"
                                    "  <Telephony_P2P_Enabled>false</Telephony_P2P_Enabled>\n"
                                    " </store>\n"));
    zel::common::FipsUtils::overrideFipsMode(false);
    EXPECT_THAT(report(), HasSubstr("<Telephony_P2P_Enabled>true</Telephony_P2P_Enabled>"));
}

TEST_F(ConfigReport, AKeyThatIsNoXmlNameIsWrittenUnchanged) {
    given(makeReadOnlyStore("S", 20, {{L"a b", L"v"}, {L"1st", L"w"}}));
    EXPECT_THAT(report(), HasSubstr("  <1st>w</1st>\n  <a b>v</a b>\n"));
}

TEST_F(ConfigReport, ReplacesIllegalCharactersOfStoreNamesAndValues) {
    given(makeReadOnlyStore("S\x01\xC3\xA9", 20, {{L"k", L"v\u0002"}}));
    EXPECT_THAT(report(), HasSubstr(" <store name=\"S&#xFFFD;&#xE9;\" priority=\"20\">\n"
                                    "  <k>v\xEF\xBF\xBD</k>\n"));
}

TEST_F(ConfigReport, WritesTheNameOfAStoreInAsciiAndAValueInUtf8) {
    given(makeReadOnlyStore("Z\xC3\xA9", 20, {{L"k", L"\u00E9"}}));
    EXPECT_THAT(report(), HasSubstr(" <store name=\"Z&#xE9;\" priority=\"20\">\n  <k>\xC3\xA9</k>\n"));
}

TEST_F(ConfigReport, AppendsTheDataFilesInTheirOrder) {
    givenDataFile("SSOAuthInfoStore.dat", "<?xml version=\"1.0\"?><sso/>");
    givenDataFile("service-location.dat", "<?xml version=\"1.0\"?><where/>");
    givenDataFile("home-fenn-info.dat", "<?xml version=\"1.0\"?><home/>");
    EXPECT_THAT(report(), testing::EndsWith("<AllMemoryConfigs/>\n<home/><where/><sso/>\n</AllConfigs>"));
}

} // namespace ZelUnified
