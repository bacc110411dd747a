#pragma once

#include <libxml/parser.h>

#include <exception>
#include <functional>
#include <string>
#include <string_view>

namespace ZelUnified {

/// Stands between a parser and the tree that it builds. The plain elements of a document's groups, which hold text
/// alone, no CDATA, and have neither attributes nor a namespace, are handed out where they end, and leave no node. From
/// the first other one on all enters the tree, so what was handed out stands before what the tree holds. Nothing is
/// handed out of a document that makes declarations. What the taker throws ends the parsing and waits to be rethrown.
class XmlPlainElements {
public:
    /// Given the name and the text, which go when it returns.
    using Take = std::function<void(std::string_view name, std::string_view text)>;

    /// Both arguments must outlive it, and it the parsing.
    XmlPlainElements(xmlParserCtxt& parser, const Take& taker);
    ~XmlPlainElements();
    XmlPlainElements(const XmlPlainElements&) = delete;
    XmlPlainElements& operator=(const XmlPlainElements&) = delete;

    /// What the taker threw, which ended the parsing.
    bool hasFailed() const noexcept { return failure != nullptr; }
    void rethrowFailure() const { std::rethrow_exception(failure); }

private:
    static XmlPlainElements& of(void* parser) noexcept;
    static void onInternalSubset(void* parser, const xmlChar* name, const xmlChar* publicId, const xmlChar* systemId);
    static void onStartElement(void* parser, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                               int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultedCount,
                               const xmlChar** attributes);
    static void onEndElement(void* parser, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri);
    static void onCharacters(void* parser, const xmlChar* characters, int length);
    static void onCdata(void* parser, const xmlChar* characters, int length);
    static void onComment(void* parser, const xmlChar* comment);
    static void onInstruction(void* parser, const xmlChar* target, const xmlChar* data);

    void beginPlain(const xmlChar* name);
    bool append(std::string_view characters);
    void endPlain();
    void leaveToTreeInElement();
    void leaveToTree();

    xmlParserCtxt& context;
    const Take& take;
    const xmlSAXHandler treeHandlers; ///< The handlers that build it.
    bool handsOut = true;
    int depth = 0;                    ///< Of open elements.
    const xmlChar* pending = nullptr; ///< The name of a plain element that has begun; the parser's.
    std::exception_ptr failure;
    std::string text; ///< Of the pending element; never grows.
};

} // namespace ZelUnified
