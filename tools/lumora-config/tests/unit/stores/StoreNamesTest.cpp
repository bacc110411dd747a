#include "stores/StoreNames.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace lumora_config {

TEST(StoreNames, AnAddedStoreIsTheLast) {
    StoreNames names;
    names.OnConfigStoreAdded("A");
    names.OnConfigStoreAdded("B");
    names.OnConfigStoreAdded("a");
    const auto all = names.getAll();
    EXPECT_EQ(all.back(), "a");
    EXPECT_EQ(all[all.size() - 2], "B");
    EXPECT_EQ(std::ranges::count(all, "A"), 0);
}

TEST(StoreNames, LearningANameTwiceKeepsItsPosition) {
    StoreNames names;
    names.addIfNew("A");
    names.addIfNew("B");
    names.addIfNew("A");
    names.addIfNew("");
    const auto all = names.getAll();
    EXPECT_EQ(all.back(), "B");
    EXPECT_EQ(all[all.size() - 2], "A");
}

} // namespace lumora_config
