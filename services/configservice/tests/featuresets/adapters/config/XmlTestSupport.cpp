#include "XmlTestSupport.h"

#include <libxml/parser.h>
#include <secure/SecureBuffer.h>
#include <secure/SecureString.h>

#include <utility>

namespace xml_test {

namespace {

// The library takes a plain function, so the counter's state can't be a member.
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
