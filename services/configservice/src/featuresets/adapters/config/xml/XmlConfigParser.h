#pragma once

#include "XmlReader.h"

#include <ConfigMap.h>
#include <ConfigServiceExport.h>

#include <string>

namespace ZelUnified {

class ConfigTable;
class XmlScrubber;

/// Turns a document of root, groups and keys into a table, and a table into such a document. The elements of all groups
/// fall into one table, the first of a key wins; its value is the element's trimmed text, or the whole element as XML
/// when it holds more than text. No state; any thread; two writers on one path are the caller's to keep apart.
///
/// A reader empties the table first, also when it then fails, and only adds to the sensitive keys.
class LUMORA_CONFIG_API XmlConfigParser {
public:
    /// A plain file.
    static bool readFromFile(const std::string& path, ConfigMap& values, ConfigKeySet& sensitiveKeys);
    /// A protected file.
    static bool readFromEncryptedFile(const std::string& path, ConfigMap& values, ConfigKeySet& sensitiveKeys);
    static bool readFromEncryptedFile(const std::string& path, ConfigTable& values, ConfigKeySet& sensitiveKeys);
    static bool readFromMemory(const std::string& xml, ConfigMap& values, ConfigKeySet& sensitiveKeys);

    /// Saves the document as it is, unprotected. False when the text is not well-formed or can't be saved.
    static bool writeToFile(const std::string& path, const std::string& xml);
    /// Writes a protected file. A key that is no XML name makes it unreadable.
    static bool writeToFile(const std::string& path, const ConfigMap& values);
    static bool writeToFile(const std::string& path, ConfigTable& values);
    static bool writeToMemory(std::string& xml, const ConfigMap& values);

private:
    /// Adds the keys that were not handed out as plain ones; those win.
    static bool addOtherKeys(const XmlDocument& document, ConfigTable& values, ConfigKeySet& sensitiveKeys);
    static bool parseXmlConfig(const XmlDocument& document, ConfigMap& values, ConfigKeySet& sensitiveKeys);
    static void parseXmlGroup(XmlScrubber& scrubber, xmlNode& group, ConfigMap& values, ConfigKeySet& sensitiveKeys);
    static std::string extractStringFromXmlNode(XmlScrubber& scrubber, xmlNode& element);
    static std::string extractXmlStringFromXmlNode(XmlScrubber& scrubber, xmlNode& element);
    static bool parseSensitiveAttribute(const xmlNode& element);
};

} // namespace ZelUnified
