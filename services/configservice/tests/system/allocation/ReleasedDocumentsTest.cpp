#include "Allocations.h"
#include "featuresets/adapters/config/chain/ConfigReport.h"
#include "featuresets/adapters/config/xml/SensitiveKeySecuringUtility.h"
#include "secure/SecureString.h"

#include <kyr/StringUtils.h>
#include <zel/EncryptFileUtils.h>

#include <CacheConfigStore.h>
#include <LocalFileConfigStore.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

namespace ZelUnified {
namespace {

using configservice_test::BlocksFreedWith;
using configservice_test::FailingAllocation;
using configservice_test::FreedText;

// Too long for the small string buffer on every platform.
const std::wstring secret(40, L's');
const std::string narrowSecret(40, 's');
/// Characters beyond ASCII use another path through the conversions.
const std::wstring secretWithAccent = L"\u00E9" + secret;

TEST(ReleasedDocuments, TheTestFindsATextInAFreedBlock) {
    auto text = std::make_unique<std::wstring>(secret);
    {
        const BlocksFreedWith freed(secret);
        EXPECT_EQ(freed.getCount(), 0U);
        text.reset();
        EXPECT_EQ(freed.getCount(), 1U);
    }
    auto narrow = std::make_unique<std::string>(narrowSecret);
    const BlocksFreedWith freed(narrowSecret);
    narrow.reset();
    EXPECT_EQ(freed.getCount(), 1U);
}

TEST(ReleasedDocuments, ConvertingATextToWideCharactersLeavesNoCopy) {
    for (const auto& text : {secret, secretWithAccent}) {
        const std::string narrow = KyrCoreUtils::toString(text);
        const BlocksFreedWith freed(secret);
        const std::wstring wide = KyrCoreUtils::toWideString(narrow);
        EXPECT_EQ(wide, text);
        EXPECT_EQ(freed.getCount(), 0U) << narrow;
    }
}

TEST(ReleasedDocuments, SecuringAPasswordLeavesNoCopy) {
    ConfigMap values{{L"ConnectionPassword", secret}};
    {
        const BlocksFreedWith freed(secret);
        SensitiveKeySecuringUtility::secureWellKnownSensitiveKeys(values);
        EXPECT_EQ(freed.getCount(), 0U);
    }
    values.at(L"ConnectionPassword") = secret;
    const BlocksFreedWith freed(narrowSecret);
    SensitiveKeySecuringUtility::secureWellKnownSensitiveKeys(values);
    EXPECT_EQ(freed.getCount(), 0U);
}

struct ReleasedCachedDocuments : testing::Test {
    void write(const std::wstring& value) const {
        ConfigMap values{{L"a", L"1"}, {L"k", value}, {L"m", L"2"}, {L"n", value}, {L"z", L"3"}};
        CacheConfigStore("X", 1, path, values);
    }

    testing_host::TemporaryProfile profile;
    const std::string path = (profile.config() / "Cache" / "cachedX.dat").string();
};

TEST_F(ReleasedCachedDocuments, ReadingThemLeavesNoValueInFreedMemory) {
    for (const auto& value : {secret, secretWithAccent}) {
        write(value);
        const BlocksFreedWith freed(secret);
        {
            CacheConfigStore store("X", 1, path);
            ASSERT_EQ(store.getKeys().size(), 5U);
        }
        EXPECT_EQ(freed.getCount(), 0U) << value.size();
    }
}

TEST_F(ReleasedCachedDocuments, ReadingThemLeavesNoNarrowValueInFreedMemory) {
    write(secret);
    const BlocksFreedWith freed(narrowSecret);
    const CacheConfigStore store("X", 1, path);
    EXPECT_EQ(freed.getCount(), 0U);
}

TEST_F(ReleasedCachedDocuments, WritingThemLeavesNoValueInFreedMemory) {
    ConfigMap values;
    values.emplace(L"k", secret);
    values.emplace(L"z", std::wstring(100'000, L'z')); // makes the document grow with the secret in it
    {
        auto handedIn = values;
        const BlocksFreedWith freed(secret);
        CacheConfigStore("X", 1, path, handedIn);
        EXPECT_EQ(freed.getCount(), 0U);
    }
    const BlocksFreedWith freed(narrowSecret);
    CacheConfigStore("X", 1, path, values);
    EXPECT_EQ(freed.getCount(), 0U);
}

TEST_F(ReleasedCachedDocuments, WritingThemZeroesTheCallersValues) {
    ConfigMap values{{L"k", secret}};
    const FreedText freed(values.at(L"k"));
    const CacheConfigStore store("X", 1, path, values);
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(freed.getContent(), std::wstring(secret.size(), L'\0'));
}

struct ReleasedUserFiles : testing::Test {
    ReleasedUserFiles() {
        LocalFileConfigStore store("LocalFileConfigStore", 1, false);
        store.storeValue(L"a", L"1");
        store.storeValue(L"k", secret);
        store.persistValues();
    }
    static void read() {
        LocalFileConfigStore store("LocalFileConfigStore", 1, true);
        std::wstring value;
        EXPECT_TRUE(store.getValue(L"k", value));
        EXPECT_EQ(value, secret);
        zel::SecureString::wipe(value);
    }

    testing_host::TemporaryProfile profile;
};

TEST_F(ReleasedUserFiles, ReadingThemLeavesNoValueInFreedMemory) {
    {
        const BlocksFreedWith freed(secret);
        read();
        EXPECT_EQ(freed.getCount(), 0U);
    }
    const BlocksFreedWith freed(narrowSecret);
    read();
    EXPECT_EQ(freed.getCount(), 0U);
}

TEST_F(ReleasedUserFiles, AWriteLeavesNoOlderValueInFreedMemory) {
    LocalFileConfigStore store("LocalFileConfigStore", 1, false);
    store.storeValue(L"k", secret + L"2");
    store.persistValues();
    store.removeValue(L"k");
    const BlocksFreedWith freed(secret);
    store.persistValues();
    EXPECT_EQ(freed.getCount(), 0U);
}

TEST_F(ReleasedUserFiles, TheReportOfADataFileLeavesNoCopyInFreedMemory) {
    ASSERT_TRUE(zel::storage::EncryptFileUtils::writeDataToFile((profile.config() / "SSOAuthInfoStore.dat").string(),
                                                                zel::SecureString("<?xml?>" + narrowSecret),
                                                                zel::storage::FileCategoryType::UserData));
    const BlocksFreedWith freed(narrowSecret);
    const auto report = ConfigReport::getConfigForPRTFromFile();
    EXPECT_NE(report.find(secret), std::wstring::npos);
    EXPECT_EQ(freed.getCount(), 0U);
}

TEST_F(ReleasedCachedDocuments, AFailedAllocationLeavesNoValueInFreedMemory) {
    for (const auto& value : {secret, secretWithAccent}) {
        write(value);
        bool failed = true;
        for (std::size_t number = 1; failed; ++number) {
            const BlocksFreedWith freed(secret);
            {
                const FailingAllocation failing(number);
                try {
                    CacheConfigStore store("X", 1, path);
                } catch (const std::bad_alloc&) {
                }
                failed = failing.hasFailed();
            }
            EXPECT_EQ(freed.getCount(), 0U) << number << ", " << value.size();
        }
    }
}

} // namespace
} // namespace ZelUnified
