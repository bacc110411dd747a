#include "secure/Base64Encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using zel::Base64Encoding;
using zel::Encoding;

std::string encode(const std::string& bytes) {
    return Base64Encoding::instance().encode(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                                             Encoding::LineBreaks::None);
}

TEST(Base64Encoding, EncodesTheKnownExamples) {
    EXPECT_EQ(encode("f"), "Zg==");
    EXPECT_EQ(encode("fo"), "Zm8=");
    EXPECT_EQ(encode("foo"), "Zm9v");
    EXPECT_EQ(encode("foob"), "Zm9vYg==");
    EXPECT_EQ(encode("fooba"), "Zm9vYmE=");
    EXPECT_EQ(encode("foobar"), "Zm9vYmFy");
    EXPECT_EQ(encode(std::string("\0\0\0", 3)), "AAAA");
    EXPECT_EQ(encode("\xfb\xff\xbf"), "+/+/");
}

TEST(Base64Encoding, TheDecodingTableIsTheInverseOfTheAlphabet) {
    const Base64Encoding& encoding = Base64Encoding::instance();
    EXPECT_EQ(encoding.getAlphabet(), "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
    const auto& table = encoding.getDecodingTable();
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        const auto at = encoding.getAlphabet().find(static_cast<char>(byte));
        const std::size_t expected = byte == '=' ? 0 : at == std::string_view::npos ? 0xFF : at;
        EXPECT_EQ(table[byte], expected) << byte;
    }
}

TEST(Base64Encoding, ReturnsItsPaddingAndIsNotForUrls) {
    const Encoding& encoding = Base64Encoding::instance();
    EXPECT_EQ(encoding.getEncodingPadding(), "=");
    EXPECT_EQ(encoding.getDecodingPadding(), "=");
    EXPECT_FALSE(encoding.isForUrls());
    EXPECT_EQ(zel::encodingLineBreak, "\r\n");
}

} // namespace
