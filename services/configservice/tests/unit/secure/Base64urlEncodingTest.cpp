#include "secure/Base64urlEncoding.h"

#include "secure/Base64Encoding.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using zel::Base64urlEncoding;
using zel::Encoding;

std::string encode(const std::string& bytes, Encoding::LineBreaks lineBreaks = Encoding::LineBreaks::None) {
    return Base64urlEncoding::instance().encode(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                                                lineBreaks);
}

TEST(Base64urlEncoding, PaddingIsAnEscapedEqualsSign) {
    EXPECT_EQ(encode("f"), "Zg%3D%3D");
    EXPECT_EQ(encode("fo"), "Zm8%3D");
    EXPECT_EQ(encode("foo"), "Zm9v");
    EXPECT_EQ(encode(std::string(55, '\0'), Encoding::LineBreaks::After72),
              std::string(72, 'A').append("\r\nAA%3D%3D"));
}

TEST(Base64urlEncoding, UsesTheUrlSafeCharacters) {
    EXPECT_EQ(encode("\xfb\xff\xbf"), "-_-_");
}

TEST(Base64urlEncoding, TheDecodingTablesDifferAtTheFourSpecialCharacters) {
    const auto& url = Base64urlEncoding::instance().getDecodingTable();
    const auto& standard = zel::Base64Encoding::instance().getDecodingTable();
    EXPECT_EQ(url['-'], 62);
    EXPECT_EQ(url['_'], 63);
    EXPECT_EQ(url['+'], 0xFF);
    EXPECT_EQ(url['/'], 0xFF);
    EXPECT_EQ(url['='], 0);
    std::string different;
    for (std::size_t byte = 0; byte < url.size(); ++byte) {
        if (url[byte] != standard[byte]) {
            different += static_cast<char>(byte);
        }
    }
    EXPECT_EQ(different, "+-/_");
}

TEST(Base64urlEncoding, ReturnsItsPaddingAndIsForUrls) {
    const Encoding& encoding = Base64urlEncoding::instance();
    EXPECT_EQ(encoding.getAlphabet(), "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_");
    EXPECT_EQ(encoding.getEncodingPadding(), "%3D");
    EXPECT_EQ(encoding.getDecodingPadding(), "=");
    EXPECT_TRUE(encoding.isForUrls());
}

} // namespace
