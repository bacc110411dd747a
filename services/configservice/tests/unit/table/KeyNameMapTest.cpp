#include "table/KeyNameMap.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace ZelUnified {
namespace {

const std::wstring* find(const KeyNameMap& names, const std::wstring& key) {
    return names.find(FoldedKey(key));
}

TEST(KeyNameMap, FindsTheOtherNameIgnoringCase) {
    const KeyNameMap names(ConfigMap{{L"Old1", L"New1"}, {L"Old2", L"New2"}});
    ASSERT_NE(find(names, L"OLD2"), nullptr);
    EXPECT_EQ(*find(names, L"OLD2"), L"New2");
    EXPECT_EQ(find(names, L"New1"), nullptr);
    EXPECT_EQ(names.getMap().size(), 2U);
}

TEST(KeyNameMap, FindsTheNamesOfTheAssignedMap) {
    KeyNameMap names(ConfigMap{{L"Old1", L"New1"}});
    names = KeyNameMap(ConfigMap{{L"Old2", L"New2"}});
    EXPECT_EQ(find(names, L"Old1"), nullptr);
    ASSERT_NE(find(names, L"old2"), nullptr);
    EXPECT_EQ(*find(names, L"old2"), L"New2");
}

TEST(KeyNameMap, IsEmptyAtFirst) {
    EXPECT_EQ(find(KeyNameMap(), L"Old"), nullptr);
}

} // namespace
} // namespace ZelUnified
