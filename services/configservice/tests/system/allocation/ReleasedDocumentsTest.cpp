#include "Allocations.h"

#include <kyr/StringUtils.h>

#include <CacheConfigStore.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

namespace ZelUnified {
namespace {

using configservice_test::BlocksFreedWith;
using configservice_test::FailingAllocation;

// Long enough for the heap on every platform.
const std::wstring secret(40, L's');
/// What is not ASCII takes another way through the conversions.
const std::wstring secretWithAccent = L"\u00E9" + secret;

TEST(ReleasedDocuments, ATextInABlockThatIsFreedIsSeen) {
    auto text = std::make_unique<std::wstring>(secret);
    const BlocksFreedWith freed(secret);
    EXPECT_EQ(freed.getCount(), 0U);
    text.reset();
    EXPECT_EQ(freed.getCount(), 1U);
}

TEST(ReleasedDocuments, ATextMadeWideLeavesNoCopyBehind) {
    for (const auto& text : {secret, secretWithAccent}) {
        const std::string narrow = KyrCoreUtils::toString(text);
        const BlocksFreedWith freed(secret);
        const std::wstring wide = KyrCoreUtils::toWideString(narrow);
        EXPECT_EQ(wide, text);
        EXPECT_EQ(freed.getCount(), 0U) << narrow;
    }
}

struct ReleasedCachedDocuments : testing::Test {
    void write(const std::wstring& value) const {
        ConfigMap values{{L"a", L"1"}, {L"k", value}, {L"m", L"2"}, {L"n", value}, {L"z", L"3"}};
        CacheConfigStore("X", 1, path, values);
    }

    testing_host::TemporaryProfile profile;
    const std::string path = (profile.config() / "Cache" / "cachedX.dat").string();
};

TEST_F(ReleasedCachedDocuments, LeaveNoValueBehindWhenTheyAreRead) {
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

TEST_F(ReleasedCachedDocuments, LeaveNoValueBehindWhenMemoryEnds) {
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
