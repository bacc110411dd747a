#pragma once

#include "XmlReader.h"

#include <ConfigMap.h>
#include <ConfigServiceExport.h>

#include <string>

namespace ZelUnified {

class ConfigTable;
class XmlScrubber;

/// Converts a document of root, groups and keys into a table, and a table into such a document. The elements of all
/// groups go into one table; the first element of a key wins. The value is the element's trimmed text, or the whole
/// element as XML if it contains more than text. Stateless; any thread. The caller must prevent two writes to the same
/// path at once.
///
/// A read operation clears the table first, even if it then fails. It adds to the sensitive keys and removes none.
class LUMORA_CONFIG_API XmlConfigParser {
public:
    /// Reads a plain file.
    static bool readFromFile(const std::string& path, ConfigMap& values, ConfigKeySet& sensitiveKeys);
    /// Reads a protected file.
    static bool readFromEncryptedFile(const std::string& path, ConfigMap& values, ConfigKeySet& sensitiveKeys);
    static bool readFromEncryptedFile(const std::string& path, ConfigTable& values, ConfigKeySet& sensitiveKeys);
    static bool readFromMemory(const std::string& xml, ConfigMap& values, ConfigKeySet& sensitiveKeys);

    /// Saves the document unchanged and unprotected. Returns false if the text is not well-formed or cannot be saved.
    static bool writeToFile(const std::string& path, const std::string& xml);
    /// Writes a protected file. A key that is not a valid XML name makes the file unreadable.
    static bool writeToFile(const std::string& path, const ConfigMap& values);
    static bool writeToFile(const std::string& path, ConfigTable& values);
    static bool writeToMemory(std::string& xml, const ConfigMap& values);

private:
    /// Adds the keys that remain in the document. Keys already in `values` win.
    static bool addOtherKeys(const XmlDocument& document, ConfigTable& values, ConfigKeySet& sensitiveKeys);
    static bool parseXmlConfig(const XmlDocument& document, ConfigMap& values, ConfigKeySet& sensitiveKeys);
    static void parseXmlGroup(XmlScrubber& scrubber, xmlNode& group, ConfigMap& values, ConfigKeySet& sensitiveKeys);
    static std::string extractStringFromXmlNode(XmlScrubber& scrubber, xmlNode& element);
    static std::string extractXmlStringFromXmlNode(XmlScrubber& scrubber, xmlNode& element);
    static bool parseSensitiveAttribute(const xmlNode& element);
};

} // namespace ZelUnified
