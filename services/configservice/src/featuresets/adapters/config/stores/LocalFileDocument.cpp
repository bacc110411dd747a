#include "LocalFileDocument.h"

#include "LocalFileConfigStoreLogger.h"
#include "featuresets/adapters/config/xml/XmlScrubber.h"
#include "featuresets/adapters/config/xml/XmlWriter.h"
#include "secure/SecureString.h"
#include "table/ConfigTable.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

namespace ZelUnified {

LocalFileDocument::LocalFileDocument(const std::string& store, ConfigMap& table)
    : migrates(!KyrCoreUtils::caseInsensitiveStringEquals(store, ConfigKeys::configDefaultsFile)), values(table) {}

void LocalFileDocument::read(const XmlDocument& document) {
    xmlNode* root = xmlDocGetRootElement(document.get());
    if (root == nullptr) {
        return;
    }
    processXml(root);
    XmlScrubber(document).scrubElement(*root);
}

void LocalFileDocument::processXml(const xmlNode* node) {
    for (; node != nullptr; node = node->next) {
        // The child of an entity reference is its declaration, which is outside the tree.
        if (node->type == XML_ELEMENT_NODE) {
            processUserConfigXml(*node);
            processXml(node->children);
        }
    }
}

void LocalFileDocument::processUserConfigXml(const xmlNode& element) {
    if (KyrCoreUtils::toLowercase(XmlReader::getName(element)) != "userconfig") {
        return;
    }
    std::wstring key;
    std::wstring value;
    for (const xmlAttr* attribute = element.properties; attribute != nullptr; attribute = attribute->next) {
        const std::string name = KyrCoreUtils::toLowercase(XmlReader::getName(*attribute));
        if (name != "name" && name != "value") {
            continue;
        }
        auto text = XmlReader::getText(*attribute, expansionBudget);
        if (!text) {
            ZelLog(localFileConfigStoreLogger, ZelLogLevel::Error, ZEL_HERE,
                   "Error entities expand too far - entry ignored");
            return;
        }
        if (name == "name") {
            key = toKey(*text);
        } else {
            value = KyrCoreUtils::toWideString(*text);
        }
        zel::SecureString::wipe(*text);
    }
    if (!key.empty()) {
        values.try_emplace(values.end(), key, value); // the hint is right for a document that the store wrote
    }
    zel::SecureString::wipe(value);
}

std::wstring LocalFileDocument::toKey(const std::string& name) const {
    const std::wstring key = KyrCoreUtils::toWideString(KyrCoreUtils::toLowercase(name));
    return migrates ? migrateKey(key) : key;
}

std::wstring LocalFileDocument::migrateKey(const std::wstring& key) {
    const bool isOldName = KyrCoreUtils::caseInsensitiveStringEquals(key, ConfigKeys::vvmMailstoreServer0);
    return isOldName ? std::wstring(ConfigKeys::voicemailPrimaryServer) : key;
}

void LocalFileDocument::getDataString(ConfigTable& table, zel::SecureString& content) {
    XmlWriter writer;
    writer.startElement("Lumora");
    for (const auto& entry : table.list()) {
        if (!writer.writeEmptyElement("userConfig", {{"name", entry->getKey()}, {"value", entry->getValue()}})) {
            ZelLog(localFileConfigStoreLogger, ZelLogLevel::Warning, ZEL_HERE,
                   L"Characters that XML can't carry are replaced in the entry of key: " +
                       std::wstring(entry->getKey()));
        }
    }
    std::string text = writer.finish();
    if (text.empty()) {
        return;
    }
    content = zel::SecureString(text);
    zel::SecureString::wipe(text);
}

} // namespace ZelUnified
