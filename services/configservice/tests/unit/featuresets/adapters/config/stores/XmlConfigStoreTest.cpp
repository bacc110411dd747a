#include "ConfigStoreConformance.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "featuresets/adapters/config/xml/XmlTestSupport.h"

#include <TemporaryProfile.h>
#include <XmlConfigStore.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

using testing::ElementsAre;
using testing::IsEmpty;
using ZelUnified::XmlConfigStore;

namespace {

class XmlConfigStoreTest : public testing::Test {
protected:
    std::string write(const std::string& keys) {
        const auto path = profile.root() / "store.xml";
        testing_host::writeFile(path, "<a><g>" + keys + "</g></a>");
        return path.string();
    }

    testing_host::TemporaryProfile profile;
    std::wstring value = L"left over";
};

} // namespace

namespace ZelUnified {

INSTANTIATE_TEST_SUITE_P(XmlConfigStore, ConfigStoreConformance,
                         testing::Values(StoreKind{
                             "Xml",
                             [](const testing_host::TemporaryProfile& profile,
                                const ConfigMap& values) -> std::shared_ptr<ConfigStore> {
                                 const auto path = (profile.root() / "store.dat").string();
                                 XmlConfigParser::writeToFile(path, values);
                                 return std::make_shared<XmlConfigStore>("Name", 7, false, true, path, true);
                             },
                             "Name", 7, true, false, StoreKind::Writes::Accepted, StoreKind::Emptying::Ignored}),
                         storeKindLabel);

} // namespace ZelUnified

TEST_F(XmlConfigStoreTest, ReadsAPlainFile) {
    XmlConfigStore store("Name", 7, false, false, write("<Foo>bar</Foo><empty/>"), true);
    EXPECT_TRUE(store.getValue(L"FOO", value));
    EXPECT_EQ(value, L"bar");
    EXPECT_TRUE(store.getValue(L"empty", value));
    EXPECT_EQ(value, L"");
    value = L"left over";
    EXPECT_FALSE(store.getValue(L"absent", value));
    EXPECT_EQ(value, L"");
    EXPECT_THAT(store.getKeys(), ElementsAre(L"empty", L"foo"));
}

TEST_F(XmlConfigStoreTest, ReadsAProtectedFile) {
    const std::string path = (profile.root() / "store.dat").string();
    ASSERT_TRUE(xml_test::writeProtected(path, "<a><g><k>v</k></g></a>"));
    XmlConfigStore protectedStore("Name", 7, true, true, path, true);
    EXPECT_THAT(protectedStore.getKeys(), ElementsAre(L"k"));
    XmlConfigStore plainStore("Name", 7, true, false, path, true);
    EXPECT_THAT(plainStore.getKeys(), IsEmpty());
}

TEST_F(XmlConfigStoreTest, ReturnsNamePriorityAndKind) {
    XmlConfigStore server("Name", 499, false, false, "/no/such/file.xml", true);
    EXPECT_EQ(server.getName(), "Name");
    EXPECT_EQ(server.getPriority(), 499);
    EXPECT_EQ(server.getCachedPriority(), 500);
    EXPECT_FALSE(server.isLocal());
    EXPECT_TRUE(server.isReadOnly());
    EXPECT_TRUE(server.waitForStoreReady());
    EXPECT_FALSE(server.shouldCacheConfigStore());
    EXPECT_TRUE(XmlConfigStore("Name", 1, true, false, "", false).isLocal());
}

TEST_F(XmlConfigStoreTest, ReadsItsFileOnlyOnRequest) {
    XmlConfigStore store("Name", 7, true, false, write("<k>v</k>"), false);
    EXPECT_THAT(store.getKeys(), IsEmpty());
}

TEST_F(XmlConfigStoreTest, NeverReturnsTheCertificateSwitch) {
    XmlConfigStore store("Name", 7, true, false,
                         write("<certificateVALIDATIONenabled>false</certificateVALIDATIONenabled>"), true);
    EXPECT_THAT(store.getKeys(), ElementsAre(L"certificatevalidationenabled"));
    for (const auto* key : {L"CertificateValidationEnabled", L"certificatevalidationENABLED"}) {
        value = L"left over";
        EXPECT_FALSE(store.getValue(key, value));
        EXPECT_EQ(value, L"");
    }
    EXPECT_TRUE(store.removeValue(L"CertificateValidationEnabled"));
}

TEST_F(XmlConfigStoreTest, FipsModeForcesTheKeyOnAHitOnly) {
    const xml_test::FipsMode fips(true);
    XmlConfigStore store("Name", 7, true, false, "", false);
    EXPECT_FALSE(store.getValue(L"Telephony_P2P_Enabled", value));
    EXPECT_EQ(value, L"");
    store.storeValue(L"telephony_p2p_enabled", L"true");
    EXPECT_TRUE(store.getValue(L"Telephony_P2P_Enabled", value));
    EXPECT_EQ(value, L"false");
}

TEST_F(XmlConfigStoreTest, WritesChangeItsValuesAndNotItsFile) {
    const std::string path = write("<k>v</k>");
    const std::string before = testing_host::readFile(path);
    XmlConfigStore store("Name", 7, true, false, path, true);
    EXPECT_TRUE(store.storeValue(L"K", L"w"));
    EXPECT_TRUE(store.storeValue(L"New", L"x"));
    EXPECT_THAT(store.getKeys(), ElementsAre(L"k", L"New"));
    EXPECT_TRUE(store.getValue(L"k", value));
    EXPECT_EQ(value, L"w");
    EXPECT_TRUE(store.removeValue(L"nEW"));
    EXPECT_FALSE(store.removeValue(L"New"));
    store.removeAllValues();
    store.persistValues();
    store.destroy();
    EXPECT_THAT(store.getKeys(), ElementsAre(L"k"));
    EXPECT_EQ(testing_host::readFile(path), before);
}

TEST_F(XmlConfigStoreTest, SupportsConcurrentReadersAndWriters) {
    XmlConfigStore store("Name", 7, true, false, "", false);
    const auto work = [&](wchar_t key) {
        std::wstring read;
        for (int round = 0; round < 200; ++round) {
            store.storeValue(std::wstring(1, key), L"v");
            store.getValue(L"shared", read);
            store.getKeys();
            store.removeValue(L"shared");
            store.storeValue(L"shared", L"v");
        }
    };
    std::thread first(work, L'a');
    std::thread second(work, L'b');
    first.join();
    second.join();
    EXPECT_THAT(store.getKeys(), ElementsAre(L"a", L"b", L"shared"));
}
