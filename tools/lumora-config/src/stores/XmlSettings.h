#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// One setting in the spelling of the document.
struct XmlSetting {
    std::wstring key;
    std::wstring value;
    bool sensitive = false;
    std::wstring group; ///< The attribute "name" of the group, or an empty text.
};

/// Reads settings from an XML file. Accepts two formats, also mixed: a root with groups whose children are the keys,
/// and `userConfig` elements with the attributes "name" and "value". The first element of a key wins. The parser
/// fetches nothing from outside the file, expands no entity, refuses a document type and prints nothing. Throws Failure
/// (Environment) with the file and the reason.
std::vector<XmlSetting> readXmlSettings(const std::string& path);
/// Like readXmlSettings(), for a text in memory. Messages use `name` as the file.
std::vector<XmlSetting> parseXmlSettings(std::string_view content, const std::string& name);

/// Throws Failure (Environment) with `name` and the line if the text is not XML.
void requireXml(std::string_view content, const std::string& name);

/// Returns the bytes of a regular file. Throws Failure (Environment) on failure.
std::string readWholeFile(const std::string& path);
/// Like readWholeFile(), but accepts a pipe too, which can be read only once. Waits for its end.
std::string readFileOrPipe(const std::string& path);

} // namespace lumora_config
