#include "secure/Encoding.h"

#include "secure/Base64Encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using zel::Base64Encoding;
using zel::Encoding;

std::string encodeBytes(const std::string& bytes, Encoding::LineBreaks lineBreaks = Encoding::LineBreaks::None) {
    return Base64Encoding::instance().encode(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                                             lineBreaks);
}

/// Returns a line of 72 characters followed by `rest`.
std::string lineAnd(std::string_view rest) {
    return std::string(72, 'A').append(rest);
}

TEST(Encoding, NoBytesEncodeToTheEmptyText) {
    EXPECT_EQ(encodeBytes(""), "");
    EXPECT_EQ(Base64Encoding::instance().encode(nullptr, 5, Encoding::LineBreaks::None), "");
}

TEST(Encoding, EachFullLineOf72CharactersEndsWithALineBreakIncludingTheLast) {
    const auto broken = [](std::size_t bytes) {
        return encodeBytes(std::string(bytes, '\0'), Encoding::LineBreaks::After72);
    };
    EXPECT_EQ(broken(51), std::string(68, 'A'));
    EXPECT_EQ(broken(54), lineAnd("\r\n"));
    EXPECT_EQ(broken(57), lineAnd("\r\nAAAA"));
    EXPECT_EQ(broken(108), lineAnd("\r\n").append(lineAnd("\r\n")));
    EXPECT_EQ(encodeBytes(std::string(54, '\0')), lineAnd(""));
}

TEST(Encoding, PaddingIsCountedWithoutTheLineBreaks) {
    const auto broken = [](std::size_t bytes) {
        return encodeBytes(std::string(bytes, '\0'), Encoding::LineBreaks::After72);
    };
    EXPECT_EQ(broken(55), lineAnd("\r\nAA=="));
    EXPECT_EQ(broken(56), lineAnd("\r\nAAA="));
    EXPECT_EQ(broken(53), std::string(71, 'A').append("="))
        << "a line that is full only because of the padding has no line break";
}

} // namespace
