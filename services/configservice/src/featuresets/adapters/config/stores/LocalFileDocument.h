#pragma once

#include "featuresets/adapters/config/xml/XmlReader.h"

#include <ConfigMap.h>

#include <string>

namespace zel {
class SecureString;
}

namespace ZelUnified {

class ConfigTable;

/// The document of a local file: "userConfig" elements, anywhere, with the attributes "name" and "value".
class LocalFileDocument {
public:
    /// `table` receives the keys; the first element of a key wins. The caller holds the table's lock.
    LocalFileDocument(const std::string& store, ConfigMap& table);

    void read(const XmlDocument& document);

    /// Writes the document of `table`, which may put that in order, into `content`. Named after the store's operation,
    /// which is what a log line names. Leaves `content` unchanged on failure.
    static void getDataString(ConfigTable& table, zel::SecureString& content);

    /// The key under which `key` is kept: an old name gives way to its successor.
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
