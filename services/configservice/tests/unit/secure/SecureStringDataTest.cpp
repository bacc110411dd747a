#include "secure/SecureStringData.h"

#include "FreedBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>

namespace {

using secure_test::FreedBlock;
using zel::SecureStringData;

void fill(SecureStringData& data) {
    data.iv.reset(new unsigned char[16]);
    data.ivLength = 16;
    std::fill_n(data.iv.get(), 16, 'i');
    data.cipherText.reset(new unsigned char[48]);
    data.cipherTextLength = 48;
    std::fill_n(data.cipherText.get(), 48, 'c');
}

TEST(SecureStringData, IsEmptyAtFirst) {
    const SecureStringData data;
    EXPECT_TRUE(data.empty);
    EXPECT_EQ(data.ivLength, 0U);
    EXPECT_EQ(data.cipherTextLength, 0U);
}

TEST(SecureStringData, ZeroesEachBufferBeforeItIsFreed) {
    SecureStringData data;
    fill(data);
    {
        const FreedBlock freed(data.iv.get(), 16);
        data.wipeIv();
        EXPECT_EQ(freed.getContent(), std::string(16, '\0'));
    }
    const FreedBlock freed(data.cipherText.get(), 48);
    data.wipeCipherText();
    EXPECT_EQ(freed.getContent(), std::string(48, '\0'));
    EXPECT_EQ(data.ivLength, 0U);
    EXPECT_EQ(data.cipherTextLength, 0U);
}

TEST(SecureStringData, ZeroesBothBuffersWhenItIsDestroyed) {
    for (const bool isVector : {true, false}) {
        std::optional<SecureStringData> data(std::in_place);
        fill(*data);
        const std::size_t size = isVector ? 16 : 48;
        const FreedBlock freed(isVector ? data->iv.get() : data->cipherText.get(), size);
        data.reset();
        EXPECT_EQ(freed.getContent(), std::string(size, '\0'));
    }
}

} // namespace
