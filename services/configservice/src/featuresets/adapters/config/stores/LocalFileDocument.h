#pragma once

#include "featuresets/adapters/config/xml/XmlReader.h"

#include <ConfigMap.h>

#include <string>

namespace zel {
class SecureString;
}

namespace ZelUnified {

class ConfigTable;

/// The document of a local file: "userConfig" elements at any depth, with the attributes "name" and "value".
class LocalFileDocument {
public:
    /// Reads into `table`; the first element of a key wins. The caller holds the table's lock.
    LocalFileDocument(const std::string& store, ConfigMap& table);

    void read(const XmlDocument& document);

    /// Writes the document of `table` into `content`; may sort the table. On failure leaves `content` unchanged. Log
    /// lines show this function's name, so it is the name of the store's operation.
    static void getDataString(ConfigTable& table, zel::SecureString& content);

    /// Returns the key under which `key` is stored: the new name if `key` is an old one.
    static std::wstring migrateKey(const std::wstring& key);

private:
    void processXml(const xmlNode* node);
    void processUserConfigXml(const xmlNode& element);
    std::wstring toKey(const std::string& name) const;

    bool migrates;
    ConfigMap& values;
    std::size_t expansionBudget = XmlReader::expansionLimit;
};

} // namespace ZelUnified
