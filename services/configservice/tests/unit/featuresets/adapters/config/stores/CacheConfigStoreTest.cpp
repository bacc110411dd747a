#include "ConfigStoreConformance.h"
#include "LocalFileTestSupport.h"
#include "featuresets/adapters/config/stores/StoreTable.h"
#include "featuresets/adapters/config/xml/XmlTestSupport.h"

#include <CacheConfigStore.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

using testing::ElementsAre;
using testing::IsEmpty;
using ZelUnified::CacheConfigStore;
using ZelUnified::ConfigMap;

namespace {

/// Return the private members. Without them a test could only see that the lock is held by waiting for it.
zel::Mutex& tableLockOf(ZelUnified::StoreTable& table);
std::recursive_mutex& platformLockOf(zel::Mutex& mutex);

template <auto tableLock, auto platformLock>
struct PrivateMembers {
    friend zel::Mutex& tableLockOf(ZelUnified::StoreTable& table) { return table.*tableLock; }
    friend std::recursive_mutex& platformLockOf(zel::Mutex& mutex) { return *(mutex.*platformLock); }
};

// Explicit instantiation may name private members.
template struct PrivateMembers<&ZelUnified::StoreTable::tableLock, &zel::Mutex::platformLock>;

class OpenCacheConfigStore final : public CacheConfigStore {
public:
    using CacheConfigStore::CacheConfigStore;
    /// Returns true if another thread holds the lock that every reader of a held key acquires.
    bool isLockedElsewhere() {
        const std::unique_lock lock(platformLockOf(tableLockOf(*table)), std::try_to_lock);
        return !lock.owns_lock();
    }
    /// Returns an absent key that the filter of the table reports as a miss. Its hashes differ in each process.
    std::wstring keyThatIsRuledOut() {
        std::wstring key = L"absent";
        while (table->mayAnswer(ZelUnified::FoldedKey(key))) {
            key += L'x';
        }
        return key;
    }
};

class CacheConfigStoreTest : public testing::Test {
protected:
    std::string valueOf(ZelUnified::ConfigStore& store, const std::wstring& key) {
        std::wstring value;
        return store.getValue(key, value) ? KyrCoreUtils::toString(value) : "(none)";
    }

    testing_host::TemporaryProfile profile;
    const std::string path = (profile.config() / "Cache" / "cachedX.dat").string();
};

} // namespace

namespace ZelUnified {

INSTANTIATE_TEST_SUITE_P(CacheConfigStore, ConfigStoreConformance,
                         testing::Values(StoreKind{
                             "Cache",
                             [](const testing_host::TemporaryProfile& profile,
                                const ConfigMap& values) -> std::shared_ptr<ConfigStore> {
                                 const auto path = (profile.config() / "Cache" / "cachedX.dat").string();
                                 ConfigMap contents = values;
                                 CacheConfigStore("X", 240, path, contents);
                                 return std::make_shared<CacheConfigStore>("X", 240, path);
                             },
                             "X", 240, true, true, StoreKind::Writes::Accepted, StoreKind::Emptying::Ignored}),
                         storeKindLabel);

} // namespace ZelUnified

TEST_F(CacheConfigStoreTest, WritesItsCopyImmediatelyAndEmptiesTheCallersMap) {
    ConfigMap contents = {{L"Key", L" v "}, {L"CertificateValidationEnabled", L"true"}};
    CacheConfigStore store("X", 240, path, contents);
    EXPECT_THAT(contents, IsEmpty());
    EXPECT_EQ(valueOf(store, L"key"), " v ");
    EXPECT_EQ(xml_test::readProtected(path),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Lumora>\n <CachedConfig>\n"
              "  <CertificateValidationEnabled>true</CertificateValidationEnabled>\n  <Key> v </Key>\n"
              " </CachedConfig>\n</Lumora>\n");
}

TEST_F(CacheConfigStoreTest, TheNextRunReadsTheCopy) {
    ConfigMap contents = {{L"Key", L" v "}};
    CacheConfigStore("X", 240, path, contents);
    CacheConfigStore restored("X", 240, path);
    EXPECT_THAT(restored.getKeys(), ElementsAre(L"key"));
    EXPECT_EQ(valueOf(restored, L"KEY"), "v");
}

TEST_F(CacheConfigStoreTest, IgnoresAnOlderCopyWhenItIsGivenContents) {
    ConfigMap old = {{L"old", L"1"}};
    CacheConfigStore("X", 240, path, old);
    ConfigMap contents = {{L"new", L"2"}};
    CacheConfigStore store("X", 240, path, contents);
    EXPECT_THAT(store.getKeys(), ElementsAre(L"new"));
    EXPECT_THAT(CacheConfigStore("X", 240, path).getKeys(), ElementsAre(L"new"));
}

TEST_F(CacheConfigStoreTest, PersistsItsTable) {
    ConfigMap contents = {{L"key", L"v"}};
    CacheConfigStore store("X", 240, path, contents);
    store.storeValue(L"key", L"w");
    EXPECT_THAT(xml_test::readProtected(path), testing::HasSubstr("<key>v</key>"));
    store.persistValues();
    EXPECT_THAT(xml_test::readProtected(path), testing::HasSubstr("<key>w</key>"));
}

TEST_F(CacheConfigStoreTest, IsLocalReadOnlyAndNotCachedAgain) {
    CacheConfigStore store("X", 240, path);
    EXPECT_THAT(store.getKeys(), IsEmpty());
    EXPECT_TRUE(store.isLocal());
    ConfigMap contents;
    EXPECT_TRUE(CacheConfigStore("X", 240, path, contents).isLocal());
    EXPECT_TRUE(store.isReadOnly());
    EXPECT_FALSE(store.shouldCacheConfigStore());
    EXPECT_EQ(store.getName(), "X");
    EXPECT_EQ(store.getPriority(), 240);
}

TEST_F(CacheConfigStoreTest, StoresTheValueThatFipsModeForces) {
    {
        ConfigMap contents = {{L"Telephony_P2P_Enabled", L"true"}};
        CacheConfigStore("X", 240, path, contents);
        const xml_test::FipsMode fips(true);
        CacheConfigStore("X", 240, path).persistValues();
    }
    const xml_test::FipsMode fips(false);
    CacheConfigStore restored("X", 240, path);
    EXPECT_EQ(valueOf(restored, L"Telephony_P2P_Enabled"), "false");
}

TEST_F(CacheConfigStoreTest, AKeyThatIsNoXmlNameMakesTheWholeCopyUnreadable) {
    ConfigMap contents = {{L"good", L"1"}, {L"a b", L"2"}};
    CacheConfigStore("X", 240, path, contents);
    EXPECT_THAT(CacheConfigStore("X", 240, path).getKeys(), IsEmpty());
}

TEST_F(CacheConfigStoreTest, KeepsItsValuesIfTheCopyCannotBeWritten) {
    testing_host::writeFile(profile.config() / "Cache", "in the way");
    ConfigMap contents = {{L"key", L"v"}};
    CacheConfigStore store("X", 240, path, contents);
    EXPECT_EQ(valueOf(store, L"key"), "v");
    EXPECT_THAT(contents, IsEmpty());
}

TEST_F(CacheConfigStoreTest, HoldsItsLockWhileItWritesTheCopy) {
    const auto keys = std::make_shared<xml_test::GatedKeyProvider>();
    zel::storage::EncryptFileUtils::overrideKeyProvider(keys);
    ConfigMap contents = {{L"key", L"v"}};
    OpenCacheConfigStore store("X", 240, path, contents);
    EXPECT_FALSE(store.isLockedElsewhere());
    keys->close();
    std::thread writer([&] { store.persistValues(); });
    EXPECT_TRUE(keys->waitForWriter());
    EXPECT_TRUE(store.isLockedElsewhere());
    EXPECT_EQ(valueOf(store, store.keyThatIsRuledOut()), "(none)"); // returns at once
    std::string read;
    std::thread reader([&] { read = valueOf(store, L"key"); });
    EXPECT_TRUE(store.isLockedElsewhere());
    keys->open();
    writer.join();
    reader.join();
    EXPECT_EQ(read, "v");
    EXPECT_FALSE(store.isLockedElsewhere());
    zel::storage::EncryptFileUtils::overrideKeyProvider(nullptr);
}
