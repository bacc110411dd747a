#include "ConfigAdapterFixture.h"
#include "secure/SecureString.h"

#include <zel/EncryptFileUtils.h>

#include <BootstrapConfigStore.h>
#include <libxml/parser.h>

namespace ZelUnified {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// The problem report of a chain with every kind of content, including secrets.
class AllConfigsReport : public ConfigAdapterFixture {
protected:
    static constexpr const wchar_t* secret = L"planted-secret";

    AllConfigsReport() {
        givenDefaults({{L"Theme", L"system"}, {L"Voicemail_Enabled", L"true"}});
        givenPolicy(L"TelemetryEnabled", L"false");
        givenPolicy(L"BDIConnectionPassword", secret);
        givenDataFile("home-fenn-info.dat", "<?xml version=\"1.0\"?>\n<home><fenn>7</fenn></home>");
        givenDataFile("SSOAuthInfoStore.dat", "<?xml version=\"1.0\"?>\n<sso/>");
        testing_host::writeFile(bootstrapFile(), "ProductMode: Full_Mode\nInitial_Info: planted-secret\n");
        loadAndStart();
        fillChain();
    }

    std::string report() { return KyrCoreUtils::toString(service->getAllConfigForPRT()); }

private:
    std::string bootstrapFile() const { return (profile.root() / "installer.properties").string(); }

    void givenDataFile(const std::string& name, const std::string& content) {
        ASSERT_TRUE(zel::storage::EncryptFileUtils::writeDataToFile(
            (profile.config() / name).string(), zel::SecureString(content), zel::storage::FileCategoryType::UserData));
    }

    void fillChain() {
        adapter->setConfig(L"Theme", L"<dark> & \"wide\" \x00e9");
        adapter->setConfig(L"ConnectionPassword", secret);
        adapter->setInMemoryConfig(L"Session", L"7");
        adapter->setMdmConfig("<a><b><EnablePRTEncryption>true</EnablePRTEncryption></b></a>");
        adapter->setUrlProvisioningData(L"?ServicesDomain=example.net");
        adapter->addConfigStore(std::make_shared<BootstrapConfigStore>("BootstrapConfigStore", bootstrapFile(), 480));
        adapter->setKeySensitive(L"Token");
        adapter->addConfigStore(makeCachingStore(
            "TFTPConfigStore", 40, {{L"TftpServer1", L"tftp.example.net"}, {L"token", secret}, {L"Empty", L""}}));
        adapter->addConfigStore(makeReadOnlyStore("OnlySecrets", 41, {{L"Addtional_Info", secret}}));
        adapter->addConfigStore(makeReadOnlyStore("WithoutKeys", 42));
    }
};

TEST_F(AllConfigsReport, OfAFullChainEqualsTheGoldenFile) {
    EXPECT_EQ(report(), testing_host::readFile(std::filesystem::path(GOLDEN_FOLDER) / "all-configs.xml"));
}

TEST_F(AllConfigsReport, ContainsNoneOfThePlantedSecrets) {
    EXPECT_THAT(report(), AllOf(HasSubstr("OnlySecrets"), Not(HasSubstr("planted-secret"))));
    EXPECT_FALSE(log.mentions("planted-secret"));
}

TEST_F(AllConfigsReport, IsAWellFormedDocument) {
    const auto text = report();
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_NONET), &xmlFreeDoc);
    ASSERT_TRUE(document);
    EXPECT_STREQ(reinterpret_cast<const char*>(xmlDocGetRootElement(document.get())->name), "AllConfigs");
}

TEST_F(AllConfigsReport, ShowsTheCopyOfAStoreLikeTheStoreInTheNextRun) {
    unload();
    loadAndStart();
    // A mark lasts for one run; the owner of the key sets it again.
    adapter->setKeySensitive(L"Token");
    EXPECT_THAT(report(), AllOf(HasSubstr("<store name=\"TFTPConfigStore\" priority=\"41\">"),
                                HasSubstr(">tftp.example.net</"), Not(HasSubstr("planted-secret"))));
}

} // namespace ZelUnified
