#include "featuresets/adapters/config/StoreNamePredicates.h"

#include <gtest/gtest.h>

namespace ZelUnified {

TEST(StoreNamePredicates, MatchNamesThatStartWithTheKnownPartIgnoringCase) {
    EXPECT_TRUE(isTftpConfigStore("TFTPConfigStore"));
    EXPECT_TRUE(isTftpConfigStore("tftp"));
    EXPECT_FALSE(isTftpConfigStore("MyTftpConfigStore"));
    EXPECT_TRUE(isGarnConfigStore("garnStore"));
    EXPECT_FALSE(isGarnConfigStore("TheGarnStore"));
    EXPECT_TRUE(isPresenceConfigStore("PRESENCECONFIGSTORE2"));
    EXPECT_FALSE(isPresenceConfigStore("Presence"));
    EXPECT_TRUE(isTaviLyncRegistryConfigStore("TaviLyncRegistryConfigStore"));
    EXPECT_FALSE(isTaviLyncRegistryConfigStore("RegistryConfigStore"));
}

TEST(StoreNamePredicates, OfCachedCopiesMatchNamesThatStartWithCached) {
    EXPECT_TRUE(isCachedGarnConfigStore("cachedGarn.dat"));
    EXPECT_TRUE(isCachedPresenceConfigStore("CachedPresenceConfigStore.dat"));
    EXPECT_TRUE(isCachedTftpConfigStore("cachedTftpConfigStore.dat"));
    EXPECT_FALSE(isCachedTftpConfigStore("TftpConfigStore.dat"));
    EXPECT_FALSE(isCachedTftpConfigStore("xcachedTftp.dat"));
}

} // namespace ZelUnified
