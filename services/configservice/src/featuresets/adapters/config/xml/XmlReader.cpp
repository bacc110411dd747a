#include "XmlReader.h"

#include "XmlGuard.h"
#include "XmlScrubber.h"
#include "secure/WipeBytes.h"

#include <kyr/FstreamUtils.h>
#include <kyr/Paths.h>
#include <kyr/StringUtils.h>

#include <libxml/entities.h>
#include <libxml/parser.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

namespace ZelUnified {

namespace {

using ParserContext = std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)>;

XmlDocument toDocument(xmlDocPtr document) {
    // Returns null for no document, so that callers can test the result like a pointer.
    return document == nullptr ? nullptr : XmlDocument(document, &xmlFreeDoc);
}

using Bytes = std::span<xmlChar>;

/// Returns true if a parser uses the bytes without conversion, and false if this is uncertain.
bool isUtf8(std::string_view text) {
    const auto begin = text.starts_with("\xEF\xBB\xBF") ? std::size_t{3} : 0;
    const auto declaration = text.substr(begin).starts_with("<?xml") ? text.substr(0, text.find("?>")) : "";
    const auto encoding = declaration.find("encoding");
    return encoding == std::string_view::npos ||
           KyrCoreUtils::toLowercase(declaration.substr(encoding)).find("utf-8") != std::string::npos;
}

/// Returns the parser's copy of `text` and stops it from growing, which would be useless and would leave the old memory
/// unzeroed. Returns an empty span if the parser has no copy, or if a conversion will replace it.
Bytes fixInput(const xmlParserCtxt& context, const std::string& text) {
    const xmlParserInput* input = context.input;
    const bool isCopy = input != nullptr && input->base != reinterpret_cast<const xmlChar*>(text.data());
    if (!isCopy || input->buf == nullptr || !isUtf8(text)) {
        return {};
    }
    input->buf->readcallback = nullptr;
    return {const_cast<xmlChar*>(input->base), const_cast<xmlChar*>(input->end)};
}

/// Zeroes the copy if the parser still holds it at the same address.
void wipeInput(const xmlParserCtxt& context, Bytes copy) {
    const xmlParserInput* input = context.input;
    if (copy.empty() || input == nullptr || input->buf == nullptr) {
        return;
    }
    const xmlChar* held = xmlBufContent(input->buf->buffer);
    if (held >= copy.data() && held <= copy.data() + copy.size()) {
        zel::wipeBytes(copy.data(), copy.size());
    }
}

std::string_view toText(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

/// Appends the text of `node` and its siblings with their entities resolved. The content of entities reduces `budget`;
/// returns false if the budget is too small. The library's own function copies the text again for each reference, so
/// its time grows with the square of their number.
bool appendText(const xmlNode* node, int depth, std::size_t& budget, std::string& text) {
    constexpr int deepest = 256;
    for (; node != nullptr; node = node->next) {
        const bool isReference = node->type == XML_ENTITY_REF_NODE;
        const xmlEntity* entity = isReference ? xmlGetDocEntity(node->doc, node->name) : nullptr;
        const bool isNested = entity != nullptr && entity->children != nullptr;
        const std::string_view part = isNested ? "" : toText(entity != nullptr ? entity->content : node->content);
        const std::size_t cost = isReference || depth > 0 ? 1 + part.size() : 0;
        if (cost > budget) {
            return false;
        }
        budget -= cost;
        text += part;
        if (isNested && (depth == deepest || !appendText(entity->children, depth + 1, budget, text))) {
            return false;
        }
    }
    return true;
}

/// Returns true if a document can start like this, in any encoding. The library decompresses input that starts like
/// gzip, xz or lzma, and the limit of the file's size would not limit what is parsed.
bool canBeginDocument(std::string_view start) {
    using namespace std::string_view_literals;
    constexpr std::array beginnings{"<"sv,   "\xEF\xBB\xBF"sv, "\xFE\xFF"sv,     "\xFF\xFE"sv,
                                    "\0<"sv, "\0\0\0<"sv,      "\0\0\xFE\xFF"sv, "\x4C\x6F\xA7\x94"sv};
    const auto begins = [start](std::string_view beginning) { return start.starts_with(beginning); };
    if (std::ranges::any_of(beginnings, begins)) {
        return true;
    }
    // lzma input can also start like a blank, but then its dictionary size follows, which contains at least one of
    // these bytes.
    return start.find_first_of(" \t\r\n") == 0 && start.find_first_of("\0\xFF"sv) == std::string_view::npos;
}

bool isPlainDocument(const std::string& path) {
    std::fstream file;
    std::array<char, 5> start{};
    if (!KyrCoreUtils::FstreamUtils::open(file, path, KyrCoreUtils::StreamMode::Read)) {
        return false;
    }
    file.read(start.data(), start.size());
    return canBeginDocument({start.data(), static_cast<std::size_t>(file.gcount())});
}

/// Passes the plain elements to `receiver`, which may be null.
XmlDocument parse(const std::string& text, const XmlPlainElements::Receiver* receiver) {
    // The library would stop at a NUL and treat the text before it as the whole document. Only NULs may follow.
    if (text.size() > XmlReader::sizeLimit || text.find_first_not_of('\0', text.find('\0')) != std::string::npos) {
        return nullptr;
    }
    const XmlGuard guard;
    const ParserContext context(xmlCreateDocParserCtxt(reinterpret_cast<const xmlChar*>(text.c_str())),
                                &xmlFreeParserCtxt);
    if (!context) {
        return nullptr;
    }
    const Bytes copy = fixInput(*context, text);
    std::optional<XmlPlainElements> plainElements;
    if (receiver != nullptr) {
        plainElements.emplace(*context, *receiver);
    }
    xmlParseDocument(context.get());
    wipeInput(*context, copy);
    XmlDocument document = toDocument(std::exchange(context->myDoc, nullptr));
    const bool isReceived = !plainElements || !plainElements->hasFailed();
    if (context->wellFormed != 0 && isReceived) {
        return document;
    }
    if (xmlNode* root = document ? xmlDocGetRootElement(document.get()) : nullptr) {
        XmlScrubber(document).scrubElement(*root);
    }
    if (!isReceived) {
        plainElements->rethrowFailure();
    }
    return nullptr;
}

} // namespace

XmlDocument XmlReader::readFile(const std::string& path) {
    std::error_code unknown;
    const auto size = std::filesystem::file_size(KyrCoreUtils::toPath(path), unknown);
    if (unknown || size > sizeLimit || !isPlainDocument(path)) {
        return nullptr;
    }
    const XmlGuard guard;
    return toDocument(xmlReadFile(path.c_str(), nullptr, 0));
}

XmlDocument XmlReader::parseDoc(const std::string& text) {
    return parse(text, nullptr);
}

XmlDocument XmlReader::parseDoc(const std::string& text, const XmlPlainElements::Receiver& receiver) {
    return parse(text, &receiver);
}

XmlDocument XmlReader::readMemory(const std::string& text, const std::string& url) {
    if (text.size() > sizeLimit) {
        return nullptr;
    }
    const XmlGuard guard;
    return toDocument(xmlReadMemory(text.data(), static_cast<int>(text.size()), url.c_str(), nullptr, 0));
}

std::string XmlReader::getName(const xmlNode& node) {
    return std::string(toText(node.name));
}

std::string XmlReader::getName(const xmlAttr& attribute) {
    return std::string(toText(attribute.name));
}

std::optional<std::string> XmlReader::getText(const xmlAttr& attribute, std::size_t& budget) {
    std::string text;
    if (!appendText(attribute.children, 0, budget, text)) {
        return std::nullopt;
    }
    return text;
}

} // namespace ZelUnified
