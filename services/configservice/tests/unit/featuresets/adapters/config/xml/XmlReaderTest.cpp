#include "featuresets/adapters/config/xml/XmlReader.h"

#include "XmlTestSupport.h"

#include <TemporaryProfile.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>

using ZelUnified::XmlReader;

namespace {

const xmlAttr& firstAttribute(const ZelUnified::XmlDocument& document) {
    return *xmlDocGetRootElement(document.get())->properties;
}

} // namespace

TEST(XmlReader, ReturnsNoDocumentForMalformedText) {
    EXPECT_EQ(XmlReader::parseDoc(""), nullptr);
    EXPECT_EQ(XmlReader::parseDoc("<a>"), nullptr);
    EXPECT_EQ(XmlReader::readMemory("", "test"), nullptr);
    EXPECT_EQ(XmlReader::readMemory(" <?xml version='1.0'?><a/>", "test"), nullptr);
    EXPECT_EQ(XmlReader::readFile("/no/such/file.xml"), nullptr);
}

TEST(XmlReader, AcceptsAByteOrderMark) {
    EXPECT_NE(XmlReader::readMemory("\xEF\xBB\xBF<a/>", "test"), nullptr);
}

TEST(XmlReader, RefusesUnknownEncodingsAndBytesInAnotherThanTheDeclaredOne) {
    EXPECT_EQ(XmlReader::readMemory("<?xml version='1.0' encoding='utf-16'?><a/>", "test"), nullptr);
    EXPECT_EQ(XmlReader::readMemory("<?xml version='1.0' encoding='no-such'?><a/>", "test"), nullptr);
    EXPECT_EQ(XmlReader::readMemory("<a>\xFF\xFE\x80</a>", "test"), nullptr);
}

TEST(XmlReader, ReadsUtf16FilesByTheirByteOrderMark) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.root() / "utf16.xml";
    testing_host::writeFile(path, std::string("\xFF\xFE<\0a\0/\0>\0", 10));
    const auto document = XmlReader::readFile(path.string());
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(XmlReader::getName(*xmlDocGetRootElement(document.get())), "a");
}

TEST(XmlReader, ReadsFilesInEveryEncodingInWhichItReadsTexts) {
    using namespace std::string_literals;
    const testing_host::TemporaryProfile profile;
    const std::string path = (profile.root() / "encoded.xml").string();
    for (const auto& text :
         {"<a/>"s, "\xEF\xBB\xBF<a/>"s, "\n \t\r<a/>"s, "\n"s + std::string(5'000, ' ') + "<a/>",
          "\xFE\xFF\0<\0a\0/\0>"s, "\xFF\xFE<\0a\0/\0>\0"s,
          "<\0?\0x\0m\0l\0 \0v\0e\0r\0s\0i\0o\0n\0=\0'\0\x31\0.\0\x30\0'\0?\0>\0<\0a\0/\0>\0"s,
          "\0<\0?\0x\0m\0l\0 \0v\0e\0r\0s\0i\0o\0n\0=\0'\0\x31\0.\0\x30\0'\0?\0>\0<\0a\0/\0>"s,
          "\0\0\0<\0\0\0a\0\0\0/\0\0\0>"s, "<\0\0\0a\0\0\0/\0\0\0>\0\0\0"s,
          "\x4C\x6F\xA7\x94\x93\x40\xA5\x85\x99\xA2\x89\x96\x95\x7E\x7D\xF1\x4B\xF0\x7D\x6F\x6E\x4C\x81\x61\x6E"s}) {
        testing_host::writeFile(path, text);
        EXPECT_EQ(XmlReader::readFile(path) != nullptr, XmlReader::readMemory(text, "test") != nullptr)
            << testing::PrintToString(text);
    }
}

TEST(XmlReader, RefusesCompressedFiles) {
    const std::string xz(
        "\xfd\x37\x7a\x58\x5a\x00\x00\x04\xe6\xd6\xb4\x46\x02\x00\x21\x01\x16\x00\x00\x00\x74\x2f\xe5\xa3\x01\x00\x15"
        "\x3c\x61\x3e\x3c\x62\x3e\x3c\x6b\x3e\x31\x3c\x2f\x6b\x3e\x3c\x2f\x62\x3e\x3c\x2f\x61\x3e\x00\x00\x00\x6b\xbf"
        "\x2b\xe2\x7b\xe9\x9d\xb2\x00\x01\x2e\x16\x56\x09\x55\xdf\x1f\xb6\xf3\x7d\x01\x00\x00\x00\x00\x04\x59\x5a",
        80);
    const std::string lzma("\x5d\x00\x00\x80\x00\xff\xff\xff\xff\xff\xff\xff\xff\x00\x1e\x18\x43\xc3\xc2\x68\xbf\x4f"
                           "\xb4\xaf\xf8\x90\x37\xd2\x6a\xe0\x35\xb1\x0a\x1b\xee\xe3\xbf\xff\xf4\xc6\xb2\x00",
                           42);
    const std::string lzmaLikeABlank(
        "\x0a\x00\x00\x01\x00\xff\xff\xff\xff\xff\xff\xff\xff\x00\x1e\x19\x07\x03\xd3\x3b\x0e\xf0\x7b\x13\x89\xe0\x25"
        "\xb5\xda\x07\x8a\xb3\x69\xd8\x71\x1d\x03\xff\xf1\xa9\x74\x00",
        42);
    const testing_host::TemporaryProfile profile;
    const std::string path = (profile.root() / "compressed.xml").string();
    for (const auto& compressed : {xml_test::gzipped(), xz, lzma, lzmaLikeABlank}) {
        testing_host::writeFile(path, compressed);
        EXPECT_EQ(XmlReader::readFile(path), nullptr) << testing::PrintToString(compressed.substr(0, 6));
    }
}

TEST(XmlReader, RefusesFilesThatAreNotRegular) {
    const testing_host::TemporaryProfile profile;
    EXPECT_EQ(XmlReader::readFile(profile.root().string()), nullptr);
}

TEST(XmlReader, RefusesNulBytesDepthAndHugeTexts) {
    EXPECT_EQ(XmlReader::readMemory(std::string("<a>x\0y</a>", 10), "test"), nullptr);
    std::string deep;
    for (int level = 0; level < 10'000; ++level) {
        deep += "<a>";
    }
    for (int level = 0; level < 10'000; ++level) {
        deep += "</a>";
    }
    EXPECT_EQ(XmlReader::parseDoc(deep), nullptr);
    const std::string huge = "<a>" + std::string(100'000'000, 'x') + "</a>";
    EXPECT_EQ(XmlReader::readMemory(huge, "test"), nullptr);
    EXPECT_EQ(XmlReader::parseDoc(huge), nullptr);
    const testing_host::TemporaryProfile profile;
    testing_host::writeFile(profile.root() / "huge.xml", huge);
    EXPECT_EQ(XmlReader::readFile((profile.root() / "huge.xml").string()), nullptr);
}

TEST(XmlReader, ReadsSixtyFourMebibytesAndNoByteMore) {
    constexpr std::size_t mebibyte = std::size_t{1} << 20U;
    std::string text = "<a>";
    for (int comments = 0; comments < 64; ++comments) {
        text += "<!--" + std::string(mebibyte - 7, 'x') + "-->";
    }
    text.replace(text.size() - 10, 10, "--></a>");
    ASSERT_EQ(text.size(), 64 * mebibyte);
    EXPECT_NE(XmlReader::parseDoc(text), nullptr);
    EXPECT_NE(XmlReader::readMemory(text, "test"), nullptr);
    text += ' ';
    EXPECT_EQ(XmlReader::parseDoc(text), nullptr);
    EXPECT_EQ(XmlReader::readMemory(text, "test"), nullptr);
}

TEST(XmlReader, ReadsDocumentsOfEveryLength) {
    std::string elements;
    for (int count = 0; count < 300; ++count) {
        for (const auto* encoding : {"UTF-8", "ISO-8859-1"}) {
            std::string text = "<?xml version='1.0' encoding='" + std::string(encoding) + "'?><a>" + elements + "</a>";
            const std::string before = text;
            EXPECT_NE(XmlReader::parseDoc(text), nullptr) << count << encoding;
            EXPECT_EQ(text, before);
        }
        elements += " <key>a value of some length</key>\n";
    }
}

TEST(XmlReader, RefusesTextWithANullCharacterExceptAtItsEnd) {
    EXPECT_NE(XmlReader::parseDoc("<a/>"), nullptr);
    EXPECT_NE(XmlReader::parseDoc(std::string("<a/>\0", 5)), nullptr);
    EXPECT_NE(XmlReader::parseDoc(std::string("<a/>\0\0\0", 7)), nullptr);
    EXPECT_EQ(XmlReader::parseDoc(std::string("<a/>\0<b/>", 9)), nullptr);
    EXPECT_EQ(XmlReader::parseDoc(std::string("<a>\0</a>", 8)), nullptr);
    EXPECT_EQ(XmlReader::parseDoc(std::string("\0", 1)), nullptr);
}

TEST(XmlReader, LoadsNoExternalEntities) {
    const testing_host::TemporaryProfile profile;
    const std::string secret = (profile.root() / "secret").string();
    testing_host::writeFile(secret, "content");
    const std::string text = "<!DOCTYPE r SYSTEM \"http://127.0.0.1:9/x.dtd\" [<!ENTITY e SYSTEM \"" + secret +
                             "\"><!ENTITY % p SYSTEM \"http://127.0.0.1:9/p.ent\"> %p;]><r><g><k>&e;</k></g></r>";
    const std::string file = (profile.root() / "attack.xml").string();
    testing_host::writeFile(file, text);
    // Settings that another user of the library in this process may have changed.
    xmlSubstituteEntitiesDefaultValue = 1;
    xmlLoadExtDtdDefaultValue = 1;
    const xml_test::LoadCounter loads(file);
    XmlReader::parseDoc(text);
    XmlReader::readMemory(text, "test");
    XmlReader::readFile(file);
    EXPECT_EQ(loads.count(), 0);
    xmlSubstituteEntitiesDefaultValue = 0;
    xmlLoadExtDtdDefaultValue = 0;
}

TEST(XmlReader, ResolvesTheEntitiesOfAnAttribute) {
    const auto document =
        XmlReader::parseDoc("<!DOCTYPE r [<!ENTITY inner 'b'><!ENTITY e 'a&inner;'>]><r v='x&e;&amp;&#x79;'/>");
    ASSERT_NE(document, nullptr);
    std::size_t budget = XmlReader::expansionLimit;
    EXPECT_EQ(XmlReader::getText(firstAttribute(document), budget), "xab&y");
    EXPECT_LT(budget, XmlReader::expansionLimit);
}

TEST(XmlReader, PlainAttributesUseNoExpansionBudget) {
    const auto document = XmlReader::parseDoc("<r v='" + std::string(1000, 'x') + "'/>");
    std::size_t budget = 0;
    EXPECT_EQ(XmlReader::getText(firstAttribute(document), budget), std::string(1000, 'x'));
    const auto empty = XmlReader::parseDoc("<r v=''/>");
    EXPECT_EQ(XmlReader::getText(firstAttribute(empty), budget), "");
}

TEST(XmlReader, StopsExpandingWhenTheBudgetIsSpent) {
    const auto document =
        XmlReader::parseDoc("<!DOCTYPE r [<!ENTITY a 'xxxxxxxxxx'><!ENTITY b '&a;&a;&a;&a;&a;'>]><r v='&b;&b;'/>");
    ASSERT_NE(document, nullptr);
    std::size_t enough = 1000;
    EXPECT_EQ(XmlReader::getText(firstAttribute(document), enough), std::string(100, 'x'));
    std::size_t tooLittle = 50;
    EXPECT_EQ(XmlReader::getText(firstAttribute(document), tooLittle), std::nullopt);
}

TEST(XmlReader, ExpandsAtMostAMillionBytesAndStepsOfADocument) {
    const auto expand = [](std::size_t references, std::size_t& budget) {
        std::string text = "<!DOCTYPE r [<!ENTITY a 'x'>]><r v='";
        for (std::size_t count = 0; count < references; ++count) {
            text += "&a;";
        }
        const auto document = XmlReader::parseDoc(text + "'/>");
        return document ? XmlReader::getText(firstAttribute(document), budget) : std::nullopt;
    };
    std::size_t budget = XmlReader::expansionLimit;
    EXPECT_EQ(expand(300'000, budget), std::string(300'000, 'x'));
    EXPECT_EQ(expand(300'000, budget), std::nullopt) << "the budget of the document is used up";
    budget = XmlReader::expansionLimit;
    EXPECT_EQ(expand(400'000, budget), std::nullopt);
    EXPECT_EQ(XmlReader::expansionLimit, 1'000'000U);
}

TEST(XmlReader, DoesNotExpandABillionLaughs) {
    for (const std::string body : {"<r><g><k>&a9;</k></g></r>", "<r v='&a9;'/>"}) {
        const auto document = XmlReader::parseDoc(xml_test::billionLaughs(body));
        if (!document || xmlDocGetRootElement(document.get())->properties == nullptr) {
            continue; // refused, or kept as a reference
        }
        std::size_t budget = XmlReader::expansionLimit;
        EXPECT_EQ(XmlReader::getText(firstAttribute(document), budget), std::nullopt);
    }
}
