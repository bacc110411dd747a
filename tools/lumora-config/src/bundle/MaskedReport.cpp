#include "MaskedReport.h"

#include "output/Failure.h"
#include "stores/ReportSettings.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>
#include <new>
#include <string_view>

namespace lumora_config {

namespace {

struct XmlDeleter {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlChar* text) const { xmlFree(text); }
};
template <class T>
using XmlPointer = std::unique_ptr<T, XmlDeleter>;

std::string toText(const xmlChar* text) {
    return text == nullptr ? std::string() : reinterpret_cast<const char*>(text);
}

const xmlChar* toXml(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

void maskAttributes(xmlNode& element, const BundleMask& mask) {
    for (auto* attribute = element.properties; attribute != nullptr; attribute = attribute->next) {
        const XmlPointer<xmlChar> value(xmlNodeListGetString(element.doc, attribute->children, 1));
        const auto masked = mask.mask(toText(value.get()));
        xmlSetProp(&element, attribute->name, toXml(masked));
    }
}

/// The report has three levels: stores, keys, texts.
void maskNodes(xmlNode* first, const BundleMask& mask) {
    for (auto* node = first; node != nullptr; node = node->next) {
        if (node->type == XML_ELEMENT_NODE) {
            maskAttributes(*node, mask);
            maskNodes(node->children, mask);
        } else if (node->content != nullptr) {
            const auto masked = mask.mask(toText(node->content));
            xmlNodeSetContent(node, toXml(masked));
        }
    }
}

} // namespace

std::string maskReport(const std::string& report, const BundleMask& mask) {
    const auto stores = findReportedStores(report, "the report");
    constexpr int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE;
    const XmlPointer<xmlDoc> document(
        xmlReadMemory(stores.data(), static_cast<int>(stores.size()), nullptr, "UTF-8", options));
    if (!document) {
        throw Failure(ExitCode::Environment, "the report is not well-formed");
    }
    maskNodes(xmlDocGetRootElement(document.get()), mask);
    xmlChar* bytes = nullptr;
    int length = 0;
    xmlDocDumpMemoryEnc(document.get(), &bytes, &length, "UTF-8");
    const XmlPointer<xmlChar> owned(bytes);
    if (!owned) {
        throw std::bad_alloc();
    }
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

} // namespace lumora_config
