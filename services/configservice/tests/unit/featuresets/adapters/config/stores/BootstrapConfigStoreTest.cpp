#include "ConfigStoreConformance.h"

#include <kyr/StringUtils.h>
#include <zel/FipsUtils.h>

#include <BootstrapConfigStore.h>
#include <LogRecorder.h>

namespace ZelUnified {

using testing::ElementsAre;

namespace {

std::string fileOf(const testing_host::TemporaryProfile& profile, const std::string& content) {
    const auto path = profile.root() / "bootstrap.properties";
    testing_host::writeFile(path, content);
    return path.string();
}

} // namespace

INSTANTIATE_TEST_SUITE_P(BootstrapConfigStore, ConfigStoreConformance,
                         testing::Values(StoreKind{
                             "Bootstrap",
                             [](const testing_host::TemporaryProfile& profile, const ConfigMap& values) {
                                 std::string content;
                                 for (const auto& [key, value] : values) {
                                     content += KyrCoreUtils::toString(key + L":" + value + L"\n");
                                 }
                                 return std::make_shared<BootstrapConfigStore>("BootstrapConfigStore",
                                                                               fileOf(profile, content), 50);
                             },
                             "BootstrapConfigStore", 50, true, true, StoreKind::Writes::Refused,
                             StoreKind::Emptying::Ignored}),
                         storeKindLabel);

class BootstrapConfigStoreTest : public testing::Test {
protected:
    ~BootstrapConfigStoreTest() override { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }

    std::unique_ptr<BootstrapConfigStore> read(const std::string& content) {
        return std::make_unique<BootstrapConfigStore>("BootstrapConfigStore", fileOf(profile, content), 50);
    }

    static std::wstring valueOf(BootstrapConfigStore& store, const std::wstring& key) {
        std::wstring value;
        return store.getValue(key, value) ? value : L"(none)";
    }

    testing_host::TemporaryProfile profile;
};

TEST_F(BootstrapConfigStoreTest, ValueKeepsItsColons) {
    const auto store = read("Url: https://example.com:8443/path\nAddress:fe80::1:\n");
    EXPECT_EQ(valueOf(*store, L"url"), L"https://example.com:8443/path");
    EXPECT_EQ(valueOf(*store, L"Address"), L"fe80::1:");
}

TEST_F(BootstrapConfigStoreTest, CommentsAndEmptyLinesAreSkipped) {
    const auto store = read("# a:1\n   # b:2\n\nc:#3\n");
    EXPECT_THAT(store->getKeys(), ElementsAre(L"c"));
    EXPECT_EQ(valueOf(*store, L"c"), L"#3");
}

TEST_F(BootstrapConfigStoreTest, LastLineNeedsNoNewline) {
    const auto store = read("a:1\nb:2");
    EXPECT_EQ(valueOf(*store, L"b"), L"2");
}

TEST_F(BootstrapConfigStoreTest, AColonAtTheEndMeansAnEmptyValue) {
    EXPECT_EQ(valueOf(*read("a:\n"), L"a"), L"");
}

TEST_F(BootstrapConfigStoreTest, ALineWithoutAColonIsAKeyWithAnEmptyValue) {
    EXPECT_EQ(valueOf(*read("  a  \n"), L"a"), L"");
}

TEST_F(BootstrapConfigStoreTest, ALineWithoutAKeyIsStoredUnderTheEmptyKey) {
    EXPECT_EQ(valueOf(*read(":v\n"), L""), L"v");
    EXPECT_EQ(valueOf(*read("   \n"), L""), L"");
}

TEST_F(BootstrapConfigStoreTest, ALaterLineWinsAndKeepsTheFirstSpelling) {
    const auto store = read("Key:1\nKEY:2\n");
    EXPECT_THAT(store->getKeys(), ElementsAre(L"Key"));
    EXPECT_EQ(valueOf(*store, L"key"), L"2");
}

TEST_F(BootstrapConfigStoreTest, KeyAndValueAreTrimmed) {
    EXPECT_EQ(valueOf(*read(" a :\t1 \n"), L"a"), L"1");
}

TEST_F(BootstrapConfigStoreTest, WindowsLineEndsAndAByteOrderMarkAreRemoved) {
    const auto store = read("\xEF\xBB\xBF"
                            "a:1\r\n\r\nb:2\r\n");
    EXPECT_THAT(store->getKeys(), ElementsAre(L"a", L"b"));
    EXPECT_EQ(valueOf(*store, L"a"), L"1");
}

TEST_F(BootstrapConfigStoreTest, MissingFileIsAWarningAndAnEmptyStore) {
    const testing_host::LogRecorder log;
    const auto path = (profile.root() / "absent").string();
    BootstrapConfigStore store("BootstrapConfigStore", path, 50);
    EXPECT_TRUE(store.getKeys().empty());
    EXPECT_THAT(log.getTexts("ConfigService-BootstrapConfigStore"), ElementsAre("File does not exist " + path));
    EXPECT_EQ(log.getRecords().front().level, ZelLogLevel::Warning);
    EXPECT_EQ(log.getRecords().front().function, "ZelUnified::BootstrapConfigStore::BootstrapConfigStore");
}

TEST_F(BootstrapConfigStoreTest, ADirectoryIsAWarningAndAnEmptyStore) {
    const testing_host::LogRecorder log;
    BootstrapConfigStore store("BootstrapConfigStore", profile.root().string(), 50);
    EXPECT_TRUE(log.mentions("File does not exist "));
}

TEST_F(BootstrapConfigStoreTest, FipsModeForcesTheKeyEvenOnAMiss) {
    const auto store = read("Telephony_P2P_Enabled:true\n");
    const auto without = read("a:1\n");
    zel::common::FipsUtils::overrideFipsMode(true);
    EXPECT_EQ(valueOf(*store, L"telephony_p2p_enabled"), L"false");
    std::wstring value;
    EXPECT_FALSE(without->getValue(L"Telephony_P2P_Enabled", value));
    EXPECT_EQ(value, L"false");
}

} // namespace ZelUnified
