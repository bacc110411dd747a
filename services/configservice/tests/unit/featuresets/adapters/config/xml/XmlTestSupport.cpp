#include "XmlTestSupport.h"

#include "secure/SecureBuffer.h"
#include "secure/SecureString.h"

#include <libxml/parser.h>
#include <libxml/xmlIO.h>
#include <libxml/xmlmemory.h>

#include <cstring>
#include <utility>

namespace xml_test {

namespace {

// Not a member, because the library takes a plain function.
struct Loads {
    xmlExternalEntityLoader previous = nullptr;
    std::string expected;
    int count = 0;
};

Loads& loads() {
    static Loads instance;
    return instance;
}

xmlParserInputPtr countLoad(const char* url, const char* id, xmlParserCtxtPtr context) {
    if (url != nullptr && url == loads().expected) {
        return loads().previous(url, id, context);
    }
    ++loads().count;
    return nullptr;
}

struct XmlMemory {
    xmlFreeFunc free = nullptr;
    xmlMallocFunc allocate = nullptr;
    xmlReallocFunc grow = nullptr;
    xmlStrdupFunc copy = nullptr;
    std::size_t limit = 0;
};

XmlMemory& memory() {
    static XmlMemory instance;
    return instance;
}

void* allocateWithinLimit(std::size_t size) {
    return size > memory().limit ? nullptr : memory().allocate(size);
}

void* growWithinLimit(void* block, std::size_t size) {
    return size > memory().limit ? nullptr : memory().grow(block, size);
}

char* copyWithinLimit(const char* text) {
    return std::strlen(text) >= memory().limit ? nullptr : memory().copy(text);
}

std::string repeat(const std::string& text, int times) {
    std::string all;
    for (int count = 0; count < times; ++count) {
        all += text;
    }
    return all;
}

} // namespace

bool writeProtected(const std::string& path, const std::string& text,
                    zel::storage::FileCategoryType::FileCategory category) {
    return zel::storage::EncryptFileUtils::writeDataToFile(path, zel::SecureString(text), category);
}

std::string readProtected(const std::string& path, zel::storage::FileCategoryType::FileCategory category) {
    zel::SecureString content;
    if (!zel::storage::EncryptFileUtils::readDataFromFile(path, content, category)) {
        return {};
    }
    zel::SecureBuffer clear;
    content.decrypt(clear);
    return {clear.getData(), clear.getLength()};
}

LoadCounter::LoadCounter(std::string expected) {
    loads() = {xmlGetExternalEntityLoader(), std::move(expected), 0};
    xmlSetExternalEntityLoader(&countLoad);
}

LoadCounter::~LoadCounter() {
    xmlSetExternalEntityLoader(loads().previous);
}

int LoadCounter::count() const {
    return loads().count;
}

XmlMemoryLimit::XmlMemoryLimit(std::size_t bytes) {
    xmlInitParser();
    XmlMemory& real = memory();
    xmlMemGet(&real.free, &real.allocate, &real.grow, &real.copy);
    real.limit = bytes;
    xmlMemSetup(real.free, &allocateWithinLimit, &growWithinLimit, &copyWithinLimit);
}

XmlMemoryLimit::~XmlMemoryLimit() {
    const XmlMemory& real = memory();
    xmlMemSetup(real.free, real.allocate, real.grow, real.copy);
}

std::vector<std::string> hostileTexts() {
    return {
        repeat("<a>", 100'000),
        repeat("<a>", 10'000) + repeat("</a>", 10'000),
        "<a><g><k v='" + std::string(11'000'000, 'x') + "'/></g></a>",
        "<a><g><k>v</k></g>",
        std::string("<a><g><k>x\0y</k></g></a>", 24),
        "<?xml version='1.0' encoding='utf-16'?><a><g><k>v</k></g></a>",
        "<?xml version='1.0' encoding='no-such'?><a><g><k>v</k></g></a>",
        "<a><g><k>\xC0\x80</k></g></a>",
        " <?xml version='1.0'?><a><g><k>v</k></g></a>",
        "<a><g><k>&undeclared;</k></g></a>",
        "<!DOCTYPE a [<!ENTITY e SYSTEM '/etc/hostname'>]><a><g><k v='&e;'>v</k></g></a>",
        "<!DOCTYPE a [<!ENTITY e '&e;'>]><a><g><k v='&e;'>v</k></g></a>",
    };
}

std::string gzipped() {
    return {"\x1f\x8b\x08\x00\xbc\x85\x01\x6b\x02\xff\xb3\x49\xb4\xb3\x49\xb2\xb3\xc9\xb6\x33\xb4\xd1\xcf\xb6\xb3\xd1"
            "\x07\xb2\xf5\x13\xed\x00\xa4\x38\x64\x03\x16\x00\x00\x00",
            40};
}

void writeInflatingFile(const std::string& path) {
    constexpr int best = 9;
    xmlOutputBufferPtr file = xmlOutputBufferCreateFilename(path.c_str(), nullptr, best);
    const std::string element = "<k>" + std::string(9'993, 'x') + "</k>";
    xmlOutputBufferWriteString(file, "<a>");
    for (int count = 0; count < 10'000; ++count) {
        xmlOutputBufferWriteString(file, element.c_str());
    }
    xmlOutputBufferWriteString(file, "</a>");
    xmlOutputBufferClose(file);
}

std::string billionLaughs(const std::string& body) {
    std::string text = "<!DOCTYPE r [<!ENTITY a0 \"laugh\">";
    for (int level = 1; level <= 9; ++level) {
        text += "<!ENTITY a" + std::to_string(level) + " \"";
        for (int copy = 0; copy < 10; ++copy) {
            text += "&a" + std::to_string(level - 1) + ";";
        }
        text += "\">";
    }
    return text + "]>" + body;
}

} // namespace xml_test
