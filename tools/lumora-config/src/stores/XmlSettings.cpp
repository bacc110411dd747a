#include "XmlSettings.h"

#include "output/Failure.h"

#include <kyr/Paths.h>
#include <kyr/StringUtils.h>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string_view>

namespace lumora_config {

namespace {

constexpr std::size_t largestFile = 64U << 20U;

struct XmlDeleter {
    void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
    void operator()(xmlChar* text) const { xmlFree(text); }
};
template <class T>
using XmlPointer = std::unique_ptr<T, XmlDeleter>;

[[noreturn]] void refuse(const std::string& path, const std::string& why) {
    throw Failure(ExitCode::Environment, path + ": " + why);
}

std::string_view toView(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

/// Initializes the library once: its implicit initialization at the first use is not thread-safe.
void prepareLibrary() {
    [[maybe_unused]] static const bool prepared = [] {
        xmlInitParser();
        return true;
    }();
}

XmlPointer<xmlDoc> parse(std::string_view content, const std::string& path) {
    prepareLibrary();
    const XmlPointer<xmlParserCtxt> context(xmlNewParserCtxt());
    if (!context) {
        throw std::bad_alloc();
    }
    constexpr int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    XmlPointer<xmlDoc> document(
        xmlCtxtReadMemory(context.get(), content.data(), static_cast<int>(content.size()), nullptr, nullptr, options));
    if (!document) {
        const auto* error = xmlCtxtGetLastError(context.get());
        refuse(path, error == nullptr ? "not XML" : "not XML, see line " + std::to_string(error->line));
    }
    return document;
}

bool isElement(const xmlNode& node) {
    return node.type == XML_ELEMENT_NODE;
}

/// Returns the attribute of that name, case-insensitively, or nothing.
std::optional<std::string> attributeOf(xmlNode& element, std::string_view name) {
    for (auto* attribute = element.properties; attribute != nullptr; attribute = attribute->next) {
        if (KyrCoreUtils::caseInsensitiveStringEquals(toView(attribute->name), name)) {
            const XmlPointer<xmlChar> text(xmlNodeListGetString(element.doc, attribute->children, 1));
            return std::string(toView(text.get()));
        }
    }
    return std::nullopt;
}

/// Returns text and CDATA joined and trimmed. An element with other content is returned as XML.
std::string valueOf(xmlNode& element) {
    std::string text;
    for (auto* child = element.children; child != nullptr; child = child->next) {
        if (child->type != XML_TEXT_NODE && child->type != XML_CDATA_SECTION_NODE) {
            const XmlPointer<xmlBuffer> buffer(xmlBufferCreate());
            xmlNodeDump(buffer.get(), element.doc, &element, 0, 0);
            return std::string(toView(xmlBufferContent(buffer.get())));
        }
        text += toView(child->content);
    }
    return KyrCoreUtils::trim(text);
}

class SettingsCollector {
public:
    void collect(const xmlNode& root) {
        for (auto* group = root.children; group != nullptr; group = group->next) {
            if (!isElement(*group) || addUserConfig(*group)) {
                continue;
            }
            groupName = KyrCoreUtils::toWideString(attributeOf(*group, "name").value_or(""));
            for (auto* child = group->children; child != nullptr; child = child->next) {
                if (isElement(*child) && !addUserConfig(*child)) {
                    add(toView(child->name), valueOf(*child), *child);
                }
            }
        }
    }

    std::vector<XmlSetting> extractSettings() { return std::move(settings); }

private:
    bool addUserConfig(xmlNode& element) {
        if (!KyrCoreUtils::caseInsensitiveStringEquals(toView(element.name), "userConfig")) {
            return false;
        }
        const auto key = attributeOf(element, "name");
        if (key && !key->empty()) {
            add(*key, attributeOf(element, "value").value_or(""), element);
        }
        return true;
    }

    void add(std::string_view key, const std::string& value, xmlNode& element) {
        const bool sensitive = KyrCoreUtils::toBool(attributeOf(element, "sensitive").value_or(""));
        settings.push_back({KyrCoreUtils::toWideString(key), KyrCoreUtils::toWideString(value), sensitive, groupName});
    }

    std::vector<XmlSetting> settings;
    std::wstring groupName; ///< Of the group that is being read.
};

enum class Accepted { Files, FilesAndPipes };

void requireReadable(const std::filesystem::path& file, const std::string& path, Accepted accepted) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        refuse(path, "no such file");
    }
    if (accepted == Accepted::FilesAndPipes && std::filesystem::is_fifo(status)) {
        return;
    }
    if (!std::filesystem::is_regular_file(status)) {
        refuse(path, accepted == Accepted::Files ? "not a regular file" : "neither a regular file nor a pipe");
    }
}

/// Does not trust the size that the system states: a pipe has none, and a file may grow.
std::string readContent(const std::string& path, Accepted accepted) {
    const auto file = KyrCoreUtils::toPath(path);
    requireReadable(file, path, accepted);
    std::ifstream stream(file, std::ios::binary);
    std::string content;
    std::array<char, 65536> buffer{};
    while (stream) {
        stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        content.append(buffer.data(), static_cast<std::size_t>(stream.gcount()));
        if (content.size() > largestFile) {
            refuse(path, "larger than 64 MiB");
        }
    }
    if (!stream.is_open() || stream.bad()) {
        refuse(path, "cannot be read");
    }
    return content;
}

} // namespace

std::string readWholeFile(const std::string& path) {
    return readContent(path, Accepted::Files);
}

std::string readFileOrPipe(const std::string& path) {
    return readContent(path, Accepted::FilesAndPipes);
}

void requireXml(std::string_view content, const std::string& name) {
    parse(content, name);
}

std::vector<XmlSetting> readXmlSettings(const std::string& path) {
    return parseXmlSettings(readWholeFile(path), path);
}

std::vector<XmlSetting> parseXmlSettings(std::string_view content, const std::string& name) {
    const auto document = parse(content, name);
    if (xmlGetIntSubset(document.get()) != nullptr) {
        refuse(name, "a document type is not accepted");
    }
    SettingsCollector collector;
    collector.collect(*xmlDocGetRootElement(document.get()));
    return collector.extractSettings();
}

} // namespace lumora_config
