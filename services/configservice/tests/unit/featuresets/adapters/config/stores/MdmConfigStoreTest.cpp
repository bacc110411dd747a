#include "ConfigStoreConformance.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "featuresets/adapters/config/xml/XmlTestSupport.h"

#include <zel/ZelLog.h>

#include <LogRecorder.h>
#include <MdmConfigRetriever.h>
#include <MdmConfigStore.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;
using ZelUnified::ConfigMap;
using ZelUnified::MdmConfigStore;

namespace {

class FixedRetriever final : public ZelUnified::MdmConfigRetriever {
public:
    explicit FixedRetriever(ConfigMap values) : config(std::move(values)) {}
    ConfigMap retrieveMdmConfig() override { return config; }

private:
    ConfigMap config;
};

} // namespace

namespace ZelUnified {

INSTANTIATE_TEST_SUITE_P(MdmConfigStore, ConfigStoreConformance,
                         testing::Values(StoreKind{"Mdm",
                                                   [](const testing_host::TemporaryProfile&,
                                                      const ConfigMap& values) -> std::shared_ptr<ConfigStore> {
                                                       std::string xml;
                                                       XmlConfigParser::writeToMemory(xml, values);
                                                       return std::make_shared<MdmConfigStore>(xml);
                                                   },
                                                   "MdmConfigStore", 500, true, true, StoreKind::Writes::Refused,
                                                   StoreKind::Emptying::Ignored}),
                         storeKindLabel);

} // namespace ZelUnified

TEST(MdmConfigStore, HoldsThePushedValues) {
    MdmConfigStore store(
        "<a><g><Key>v</Key><CertificateValidationEnabled>false</CertificateValidationEnabled></g></a>");
    std::wstring value;
    EXPECT_TRUE(store.getValue(L"KEY", value));
    EXPECT_EQ(value, L"v");
    EXPECT_TRUE(store.getValue(L"CertificateValidationEnabled", value));
    EXPECT_EQ(value, L"false");
    EXPECT_FALSE(store.getValue(L"absent", value));
    EXPECT_EQ(value, L"");
    EXPECT_THAT(store.getKeys(), ElementsAre(L"certificatevalidationenabled", L"key"));
}

TEST(MdmConfigStore, KeepsARetrieversMapUnchangedAndTrimsOnReading) {
    MdmConfigStore store(std::make_shared<FixedRetriever>(ConfigMap{{L"Key", L" v\t"}}));
    EXPECT_THAT(store.getKeys(), ElementsAre(L"Key"));
    std::wstring value;
    EXPECT_TRUE(store.getValue(L"key", value));
    EXPECT_EQ(value, L"v");
}

TEST(MdmConfigStore, IsEmptyWithoutARetriever) {
    EXPECT_THAT(MdmConfigStore(nullptr).getKeys(), IsEmpty());
    EXPECT_THAT(MdmConfigStore(std::shared_ptr<ZelUnified::MdmConfigRetriever>()).getKeys(), IsEmpty());
}

TEST(MdmConfigStore, IsEmptyAfterMalformedText) {
    const testing_host::LogRecorder log;
    EXPECT_THAT(MdmConfigStore("").getKeys(), IsEmpty());
    EXPECT_THAT(log.getRecords(), IsEmpty());
    EXPECT_THAT(MdmConfigStore("<a>").getKeys(), IsEmpty());
    EXPECT_EQ(log.getTexts(ZelLogLevel::Error).size(), 1U);
}

TEST(MdmConfigStore, FipsModeForcesTheKeyOnAHitAndOnAMiss) {
    const xml_test::FipsMode fips(true);
    MdmConfigStore empty("");
    std::wstring value;
    EXPECT_FALSE(empty.getValue(L"telephony_p2p_enabled", value));
    EXPECT_EQ(value, L"false");
    MdmConfigStore store(std::make_shared<FixedRetriever>(ConfigMap{{L"Telephony_P2P_Enabled", L"true"}}));
    EXPECT_TRUE(store.getValue(L"telephony_p2p_enabled", value));
    EXPECT_EQ(value, L"false");
}

TEST(MdmConfigStore, RefusesWrites) {
    MdmConfigStore store("<a><g><k>v</k></g></a>");
    EXPECT_FALSE(store.storeValue(L"k", L"w"));
    EXPECT_FALSE(store.removeValue(L"k"));
    store.removeAllValues();
    store.persistValues();
    store.destroy();
    EXPECT_THAT(store.getKeys(), ElementsAre(L"k"));
}

TEST(MdmConfigStore, ReturnsNamePriorityAndKind) {
    MdmConfigStore store("");
    EXPECT_EQ(store.getName(), "MdmConfigStore");
    EXPECT_EQ(store.getPriority(), 500);
    EXPECT_EQ(store.getCachedPriority(), 501);
    EXPECT_TRUE(store.isReadOnly());
    EXPECT_TRUE(store.isLocal());
    EXPECT_TRUE(store.waitForStoreReady());
    EXPECT_FALSE(store.shouldCacheConfigStore());
}
