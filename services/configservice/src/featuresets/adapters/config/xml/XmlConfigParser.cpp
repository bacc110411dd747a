#include "XmlConfigParser.h"

#include "SensitiveKeySecuringUtility.h"
#include "XmlBuffer.h"
#include "XmlGuard.h"
#include "XmlScrubber.h"
#include "XmlWriter.h"
#include "logging/LogPlace.h"
#include "secure/FilePermissions.h"
#include "secure/FipsValueOverride.h"
#include "secure/SecureBuffer.h"
#include "secure/SecureString.h"
#include "secure/StackWiper.h"
#include "table/ConfigTable.h"
#include "table/WipedValues.h"

#include <kyr/FileUtils.h>
#include <kyr/FstreamUtils.h>
#include <kyr/Paths.h>
#include <kyr/StringUtils.h>
#include <zel/EncryptFileUtils.h>
#include <zel/ZelLog.h>

#include <ConfigKeys.h>
#include <libxml/uri.h>

#include <filesystem>
#include <fstream>
#include <system_error>

namespace ZelUnified {

using KyrCoreUtils::FileUtils;
using KyrCoreUtils::toWideString;
using zel::storage::EncryptFileUtils;

namespace {

ZelLogger& parserLogger = ZelLogger_getLogger("ConfigService-XmlConfigParser");

zel::storage::FileCategoryType::FileCategory categoryOf(const std::string& path) {
    const bool outlivesReset = path.find(ConfigKeys::urlProvisioningConfigStore) != std::string::npos;
    return outlivesReset ? zel::storage::FileCategoryType::DeviceData : zel::storage::FileCategoryType::UserData;
}

/// Returns the path with the extension of its last component replaced by the extension of protected files.
std::string toProtectedName(const std::string& path) {
    const std::string name = FileUtils::getFileName(path);
    const std::string directory = path.substr(0, path.size() - name.size());
    return directory + name.substr(0, name.rfind('.')) + ".dat";
}

void ensureParentDirectory(const std::string& path) {
    const std::string parent = FileUtils::getParentDirectory(path);
    if (!parent.empty() && !FileUtils::fileExists(parent)) {
        FileUtils::createDirectory(parent);
    }
}

/// Returns both names under which a protected file may be kept.
std::wstring describeFile(const std::string& path) {
    const std::string name = FileUtils::getFileName(path);
    return toWideString(name) + L" or " + toWideString(toProtectedName(name));
}

/// Returns the path as the library must receive it: the library decodes a path that is a valid URI.
std::string toSavePath(const std::string& path) {
    if (path.find('%') == std::string::npos) {
        return path;
    }
    std::error_code error;
    std::string absolute = KyrCoreUtils::toGenericText(std::filesystem::absolute(KyrCoreUtils::toPath(path), error));
    if (error) {
        return path;
    }
    if (!absolute.starts_with('/')) { // it begins with the name of a drive
        absolute.insert(0, 1, '/');
    }
    const std::unique_ptr<xmlChar, decltype(xmlFree)> escaped(
        xmlURIEscapeStr(reinterpret_cast<const xmlChar*>(absolute.c_str()), reinterpret_cast<const xmlChar*>("/")),
        xmlFree);
    return escaped ? "file://" + std::string(reinterpret_cast<const char*>(escaped.get())) : path;
}

/// Creates the file for the owner only, or empties an existing one and restricts it. Otherwise the library would create
/// it with the process's umask.
void reserveForOwner(const std::string& path) {
    createForOwner(path, ""); // somebody could open a file of the stream before it is restricted
    std::fstream stream;
    KyrCoreUtils::FstreamUtils::open(stream, path, KyrCoreUtils::StreamMode::Write);
    restrictToOwner(path);
}

/// Writes the document of a table into `xml`. Returns false if the library fails. `place` is the caller's, for the log.
bool build(ConfigTable& values, std::string& xml, const LogPlace& place) {
    XmlWriter writer;
    if (!writer.isReady()) {
        return false;
    }
    writer.startElement("Lumora");
    writer.startElement("CachedConfig");
    for (const auto& entry : values.list()) {
        if (!writer.writeElement(KyrCoreUtils::toString(entry->getKey()), entry->getValue())) {
            ZelLog(parserLogger, ZelLogLevel::Warning, place.file, place.line, place.function,
                   L"Characters that XML can't carry are replaced in the value of key: " +
                       std::wstring(entry->getKey()));
        }
    }
    xml = writer.finish();
    return !xml.empty();
}

bool holdsOnlyText(const xmlNode& element) {
    for (const xmlNode* child = element.children; child != nullptr; child = child->next) {
        if (child->type != XML_TEXT_NODE && child->type != XML_CDATA_SECTION_NODE) {
            return false;
        }
    }
    return true;
}

std::size_t textLength(const xmlNode& element) {
    std::size_t length = 0;
    for (const xmlNode* child = element.children; child != nullptr; child = child->next) {
        length += static_cast<std::size_t>(xmlStrlen(child->content));
    }
    return length;
}

/// Inserts the key of an element's name and returns the new entry, or null if an earlier element had the key.
ConfigMap::value_type* insertKey(std::string_view name, ConfigMap& values) {
    std::wstring key = toWideString(name);
    KyrCoreUtils::makeLowercase(key);
    const std::size_t known = values.size();
    // Documents are written in the order of the table, so most keys belong at its end.
    const auto entry = values.try_emplace(values.end(), std::move(key));
    return values.size() == known ? nullptr : &*entry;
}

/// Inserts plain elements into a table. All elements share two strings, so each element needs memory only for its
/// entry.
class PlainElementLoader {
public:
    explicit PlainElementLoader(ConfigTable& table) : values(table) {}
    ~PlainElementLoader() { zel::SecureString::wipe(value); }
    PlainElementLoader(const PlainElementLoader&) = delete;
    PlainElementLoader& operator=(const PlainElementLoader&) = delete;

    void load(std::string_view name, std::string_view text) {
        toWideString(name, key);
        toWideString(KyrCoreUtils::trimmedView(text), value);
        values.load(FoldedKey(key), zel::withFipsOverride(key, value));
        zel::SecureString::wipe(value);
    }

private:
    ConfigTable& values;
    std::wstring key;
    std::wstring value;
};

/// Inserts the plain keys into `values` and returns the document of all other elements. On failure returns null or
/// throws, and `values` is empty.
XmlDocument parseProtectedText(const zel::SecureString& content, ConfigTable& values) {
    zel::SecureBuffer clear;
    content.decrypt(clear);
    std::string text(clear.getData(), clear.getLength());
    PlainElementLoader loader(values);
    try {
        XmlDocument document =
            XmlReader::parseDoc(text, [&](std::string_view name, std::string_view value) { loader.load(name, value); });
        zel::SecureString::wipe(text);
        if (!document) {
            values.clear();
        }
        return document;
    } catch (...) {
        zel::SecureString::wipe(text);
        values.clear();
        throw;
    }
}

bool isSensitive(const xmlNode& element) {
    return SensitiveKeySecuringUtility::isWellKnownSensitiveKey(toWideString(XmlReader::getName(element)));
}

} // namespace

bool XmlConfigParser::readFromFile(const std::string& path, ConfigMap& values, ConfigKeySet& sensitiveKeys) {
    values.clear();
    if (!FileUtils::fileExists(path)) {
        return false;
    }
    const XmlDocument document = XmlReader::readFile(path);
    if (!document) {
        ZelLog(parserLogger, ZelLogLevel::Warning, ZEL_HERE,
               L"XML in file did not exist or is an invalid XML document: " + toWideString(path));
        return false;
    }
    return parseXmlConfig(document, values, sensitiveKeys);
}

bool XmlConfigParser::readFromEncryptedFile(const std::string& path, ConfigMap& values, ConfigKeySet& sensitiveKeys) {
    values.clear();
    ConfigTable table;
    const bool isRead = readFromEncryptedFile(path, table, sensitiveKeys);
    for (const auto& entry : table.list()) {
        values.emplace_hint(values.end(), entry->getKey(), entry->getValue());
    }
    return isRead;
}

bool XmlConfigParser::readFromEncryptedFile(const std::string& path, ConfigTable& values, ConfigKeySet& sensitiveKeys) {
    const zel::StackWiper wiper;
    values.clear();
    zel::SecureString content;
    if (!EncryptFileUtils::readDataFromFile(path, content, categoryOf(path))) {
        ZelLog(parserLogger, ZelLogLevel::Warning, ZEL_HERE, L"Failed to read XML document: " + describeFile(path));
        return false;
    }
    const XmlDocument document = parseProtectedText(content, values);
    if (!document) {
        ZelLog(parserLogger, ZelLogLevel::Warning, ZEL_HERE,
               L"XML in file did not exist or is an invalid XML document: " + describeFile(path));
        return false;
    }
    const bool parsed = addOtherKeys(document, values, sensitiveKeys);
    if (xmlNode* root = xmlDocGetRootElement(document.get())) {
        // The file is protected, so all its texts in the tree are zeroed, not only passwords.
        XmlScrubber(document).scrubElement(*root);
    }
    return parsed;
}

bool XmlConfigParser::addOtherKeys(const XmlDocument& document, ConfigTable& values, ConfigKeySet& sensitiveKeys) {
    ConfigMap rest;
    const ValuesWiper wiper(rest);
    ConfigKeySet marked;
    const bool parsed = parseXmlConfig(document, rest, marked);
    for (const auto& [key, value] : rest) {
        if (values.load(FoldedKey(key), value) && marked.contains(key)) {
            sensitiveKeys.insert(key);
        }
    }
    return parsed;
}

bool XmlConfigParser::readFromMemory(const std::string& xml, ConfigMap& values, ConfigKeySet& sensitiveKeys) {
    values.clear();
    if (xml.empty()) {
        return false;
    }
    return parseXmlConfig(XmlReader::readMemory(xml, "xmlDocument"), values, sensitiveKeys);
}

bool XmlConfigParser::writeToFile(const std::string& path, const std::string& xml) {
    const XmlDocument document = XmlReader::readMemory(xml, path);
    ensureParentDirectory(path);
    if (!document) {
        return false;
    }
    reserveForOwner(path);
    const XmlGuard guard;
    return xmlSaveFile(toSavePath(path).c_str(), document.get()) != -1;
}

bool XmlConfigParser::writeToFile(const std::string& path, const ConfigMap& values) {
    ConfigTable table(values);
    return writeToFile(path, table);
}

bool XmlConfigParser::writeToFile(const std::string& path, ConfigTable& values) {
    const zel::StackWiper wiper;
    ensureParentDirectory(path);
    std::string text;
    if (!build(values, text, {ZEL_HERE})) {
        return false;
    }
    const zel::SecureString content(text);
    const bool written = EncryptFileUtils::writeDataToFile(path, content, categoryOf(path));
    zel::SecureString::wipe(text);
    ZelLog(parserLogger, ZelLogLevel::Info, ZEL_HERE, L"data written to file: " + toWideString(toProtectedName(path)));
    return written;
}

bool XmlConfigParser::writeToMemory(std::string& xml, const ConfigMap& values) {
    ConfigTable table(values);
    return build(table, xml, {ZEL_HERE});
}

bool XmlConfigParser::parseXmlConfig(const XmlDocument& document, ConfigMap& values, ConfigKeySet& sensitiveKeys) {
    if (!document) {
        ZelLog(parserLogger, ZelLogLevel::Error, ZEL_HERE,
               "\n************\nError Invalid XML syntax detected - Unable to read xml "
               "configuration.\n************");
        return false;
    }
    xmlNode* root = xmlDocGetRootElement(document.get());
    if (root == nullptr) {
        ZelLog(parserLogger, ZelLogLevel::Warning, ZEL_HERE, "XML document root element not available.");
        return false;
    }
    const XmlGuard guard;
    XmlScrubber scrubber(document);
    for (xmlNode* group = root->children; group != nullptr; group = group->next) {
        if (group->type == XML_ELEMENT_NODE) {
            parseXmlGroup(scrubber, *group, values, sensitiveKeys);
        }
    }
    return true;
}

void XmlConfigParser::parseXmlGroup(XmlScrubber& scrubber, xmlNode& group, ConfigMap& values,
                                    ConfigKeySet& sensitiveKeys) {
    for (xmlNode* element = group.children; element != nullptr; element = element->next) {
        if (element->type != XML_ELEMENT_NODE) {
            continue;
        }
        ConfigMap::value_type* entry = insertKey(XmlReader::getName(*element), values);
        if (entry == nullptr) {
            continue;
        }
        const bool isMarked = parseSensitiveAttribute(*element); // first: extracting a password wipes its attributes
        std::string text = holdsOnlyText(*element) ? extractStringFromXmlNode(scrubber, *element)
                                                   : extractXmlStringFromXmlNode(scrubber, *element);
        entry->second = toWideString(text);
        zel::SecureString::wipe(text);
        zel::applyFipsValueOverride(entry->first, entry->second);
        if (isMarked) {
            sensitiveKeys.insert(entry->first);
        }
    }
}

std::string XmlConfigParser::extractStringFromXmlNode(XmlScrubber& scrubber, xmlNode& element) {
    if (element.children == nullptr || element.children->content == nullptr) {
        return {};
    }
    const bool scrubs = isSensitive(element);
    std::string text;
    text.reserve(textLength(element)); // growing would leave copies behind
    for (xmlNode* child = element.children; child != nullptr; child = child->next) {
        if (child->content != nullptr) {
            text += reinterpret_cast<const char*>(child->content);
        }
        if (scrubs) {
            scrubber.scrubText(*child);
        }
    }
    std::string value = KyrCoreUtils::trim(text);
    zel::SecureString::wipe(text);
    return value;
}

std::string XmlConfigParser::extractXmlStringFromXmlNode(XmlScrubber& scrubber, xmlNode& element) {
    const XmlBuffer buffer = makeXmlBuffer(element);
    if (!buffer || xmlNodeDump(buffer.get(), element.doc, &element, 0, 0) == -1) {
        return {};
    }
    const auto length = static_cast<std::size_t>(xmlBufferLength(buffer.get()));
    std::string text(reinterpret_cast<const char*>(xmlBufferContent(buffer.get())), length);
    if (isSensitive(element)) {
        scrubber.scrubElement(element);
    }
    return text;
}

bool XmlConfigParser::parseSensitiveAttribute(const xmlNode& element) {
    for (const xmlAttr* attribute = element.properties; attribute != nullptr; attribute = attribute->next) {
        if (KyrCoreUtils::toLowercase(XmlReader::getName(*attribute)) == "sensitive") {
            std::size_t budget = 1000; // a boolean is short
            const auto text = XmlReader::getText(*attribute, budget);
            return text && KyrCoreUtils::toBool(*text);
        }
    }
    return false;
}

} // namespace ZelUnified
