#include "featuresets/adapters/config/stores/RegistryKeyHandle.h"

#include <InMemoryRegistry.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelUnified {

using namespace zel::registry;
using testing::IsEmpty;
using testing::SizeIs;

TEST(RegistryKeyHandle, ClosesItsKeyOnce) {
    testing_host::InMemoryRegistry registry;
    registry.makeKey(HKEY_CURRENT_USER, L"K");
    {
        RegistryKeyHandle key(registry, HKEY_CURRENT_USER, L"K");
        EXPECT_TRUE(key);
        EXPECT_EQ(key.getResult(), RegistryResult::Success);
        EXPECT_EQ(registry.getOpenKeyCount(), 1U);
        const auto handle = key.get();
        key.close();
        EXPECT_THAT(registry.getClosed(), testing::ElementsAre(handle));
    }
    EXPECT_THAT(registry.getClosed(), SizeIs(1));
    { const RegistryKeyHandle key(registry, HKEY_CURRENT_USER, L"K"); }
    EXPECT_THAT(registry.getClosed(), SizeIs(2));
    EXPECT_EQ(registry.getOpenKeyCount(), 0U);
}

TEST(RegistryKeyHandle, OfAMissingKeyIsFalseAndClosesNothing) {
    testing_host::InMemoryRegistry registry;
    {
        const RegistryKeyHandle key(registry, HKEY_CURRENT_USER, L"K");
        EXPECT_FALSE(key);
        EXPECT_EQ(key.getResult(), RegistryResult::NotFound);
    }
    EXPECT_THAT(registry.getClosed(), IsEmpty());
}

TEST(RegistryKeyHandle, OfAnOpenedKeyWithoutAHandleIsFalseAndClosesNothing) {
    testing_host::InMemoryRegistry registry;
    registry.failOpening(L"K", RegistryResult::Success);
    {
        const RegistryKeyHandle key(registry, HKEY_CURRENT_USER, L"K");
        EXPECT_FALSE(key);
        EXPECT_EQ(key.getResult(), RegistryResult::Success);
    }
    EXPECT_THAT(registry.getClosed(), IsEmpty());
}

} // namespace ZelUnified
