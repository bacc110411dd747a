#include "base/SharedTexts.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace ZelUnified {
namespace {

TEST(SharedTexts, EqualTextsShareOneAllocation) {
    SharedTexts texts;
    const auto first = texts.share(L"LocalStore");
    const auto other = texts.share(L"CachedStore");
    const auto second = texts.share(L"LocalStore");
    EXPECT_EQ(second.get(), L"LocalStore");
    EXPECT_EQ(&second.get(), &first.get());
    EXPECT_EQ(other.get(), L"CachedStore");
}

TEST(SharedTexts, TextsThatDifferInCaseAreDistinct) {
    SharedTexts texts;
    texts.share(L"LocalStore");
    EXPECT_EQ(texts.share(L"LOCALSTORE").get(), L"LOCALSTORE");
    EXPECT_EQ(texts.share(L"LocalStore").get(), L"LocalStore");
}

TEST(SharedTexts, TheEmptyTextIsReturnedUnchanged) {
    SharedTexts texts;
    EXPECT_EQ(texts.share(L"").get(), L"");
    texts.share(L"LocalStore");
    EXPECT_EQ(texts.share(L"").get(), L"");
}

TEST(SharedTexts, ATextIsKeptAfterItsLastReferenceIsReleased) {
    SharedTexts texts;
    const auto* const address = &texts.share(L"LocalStore").get();
    EXPECT_EQ(&texts.share(L"LocalStore").get(), address);
}

TEST(SharedTexts, TextsBeyondTheLimitAreReturnedCorrectly) {
    SharedTexts texts;
    const auto nameOf = [](int number) { return L"Store " + std::to_wstring(number); };
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 200; ++i) {
            ASSERT_EQ(texts.share(nameOf(i)).get(), nameOf(i));
        }
    }
    const auto early = texts.share(nameOf(0));
    EXPECT_EQ(&texts.share(nameOf(0)).get(), &early.get());
}

TEST(SharedTexts, TheFirst64TextsAreKept) {
    SharedTexts texts;
    std::vector<SharedText> first;
    for (int i = 0; i <= 64; ++i) {
        first.push_back(texts.share(L"Store " + std::to_wstring(i)));
    }
    for (int i = 0; i <= 64; ++i) {
        const auto again = texts.share(L"Store " + std::to_wstring(i));
        EXPECT_EQ(&again.get() == &first[static_cast<std::size_t>(i)].get(), i < 64) << i;
    }
}

TEST(SharedTexts, TextsBeyondTheLimitAreNotKept) {
    SharedTexts texts;
    for (int i = 0; i < 1000; ++i) {
        texts.share(L"Store " + std::to_wstring(i));
    }
    const auto late = texts.share(L"Store 999");
    texts.share(L"Store 998");
    EXPECT_NE(&texts.share(L"Store 999").get(), &late.get());
}

} // namespace
} // namespace ZelUnified
