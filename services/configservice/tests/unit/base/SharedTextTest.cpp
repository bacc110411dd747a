#include "base/SharedText.h"

#include <gtest/gtest.h>

#include <string>

namespace ZelUnified {
namespace {

TEST(SharedText, IsEmptyAtFirst) {
    EXPECT_EQ(SharedText().get(), L"");
    EXPECT_EQ(SharedText(L"").get(), L"");
    EXPECT_EQ(SharedText(std::wstring()).get(), L"");
}

TEST(SharedText, CopiesShareOneText) {
    const SharedText text(std::wstring(L"LocalStore"));
    const SharedText copy(text); // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_EQ(copy.get(), L"LocalStore");
    EXPECT_EQ(&copy.get(), &text.get());
}

TEST(SharedText, EqualsAnotherSharedTextWithTheSameCharacters) {
    const SharedText text(L"LocalStore");
    const SharedText copy(text); // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_TRUE(text == copy);
    EXPECT_TRUE(text == SharedText(L"LocalStore"));
    EXPECT_TRUE(text == std::wstring(L"LocalStore"));
    EXPECT_TRUE(SharedText() == SharedText(L""));
    EXPECT_TRUE(SharedText() == std::wstring());
}

TEST(SharedText, DiffersFromAnotherTextAndFromAnotherCase) {
    const SharedText text(L"LocalStore");
    EXPECT_TRUE(text != SharedText(L"CachedStore"));
    EXPECT_TRUE(text != SharedText(L"LOCALSTORE"));
    EXPECT_TRUE(text != SharedText());
    EXPECT_TRUE(text != std::wstring(L"LOCALSTORE"));
    EXPECT_TRUE(text != std::wstring());
}

} // namespace
} // namespace ZelUnified
