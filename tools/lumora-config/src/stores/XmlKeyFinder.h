#pragma once

#include "KeyPlaces.h"

#include <string>
#include <string_view>

namespace lumora_config {

/// Finds the line of each key in an XML document. Keeps no values, so it can read a decrypted document.
class XmlKeyFinder {
public:
    /// The elements that are keys.
    enum class Form {
        UserConfig, ///< "userConfig" elements at any depth, with the key in the attribute "name".
        Elements,   ///< The elements in the groups below the root.
        Both        ///< As readXmlSettings() accepts.
    };

    /// Returns the first place of each key; nothing behind a syntax error or in a document with a document type.
    /// `file` is only recorded.
    static KeyPlaces find(std::string_view content, const std::string& file, Form form);

private:
    XmlKeyFinder(const std::string& documentFile, Form documentForm) : file(documentFile), form(documentForm) {}

    // The parser calls these.
    static void onDocumentType(void* parser, const unsigned char* name, const unsigned char* publicId,
                               const unsigned char* systemId);
    // NOLINTNEXTLINE(readability-function-size): the library defines the parameters
    static void onStart(void* parser, const unsigned char* name, const unsigned char* prefix, const unsigned char* uri,
                        int namespaceCount, const unsigned char** namespaces, int attributeCount, int defaultedCount,
                        const unsigned char** attributes);
    static void onEnd(void* parser, const unsigned char* name, const unsigned char* prefix, const unsigned char* uri);

    void parse(std::string_view content);
    void recordElement(std::string_view name, const unsigned char** attributes, int attributeCount, std::size_t line);
    bool isUserConfig(std::string_view name) const;
    void add(std::string_view key, std::size_t line);

    const std::string& file;
    const Form form;
    int depth = 0; ///< The number of open elements.
    KeyPlaces places;
};

} // namespace lumora_config
