#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// One setting of a document, as written there.
struct XmlSetting {
    std::wstring key;
    std::wstring value;
    bool sensitive = false;
};

/// Reads settings from an XML file of somebody else. Two spellings are understood, also mixed: a root with groups whose
/// children are the keys, and `userConfig` elements with the attributes "name" and "value". The first element of a key
/// wins. Nothing outside the file is fetched, no entity is expanded, a document type is refused, and the parser prints
/// nothing. Throws Failure (Environment) that names the file and why it was refused.
std::vector<XmlSetting> readXmlSettings(const std::string& path);
/// The same for a text in memory; messages call it `name`.
std::vector<XmlSetting> parseXmlSettings(std::string_view content, const std::string& name);

/// The bytes of a regular file. Throws Failure (Environment).
std::string readWholeFile(const std::string& path);

} // namespace lumora_config
