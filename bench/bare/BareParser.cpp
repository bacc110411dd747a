#include "BareParser.h"

#include "RowSuite.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"

#include <libxml/parser.h>

#include <cstddef>

namespace bench {

namespace {

/// Counts the parser's events, so that the compiler cannot remove the work.
struct Counts {
    std::size_t elements = 0;
    std::size_t characters = 0;
};

void countElement(void* context, const xmlChar* /*name*/, const xmlChar** /*attributes*/) {
    ++static_cast<Counts*>(context)->elements;
}

void countCharacters(void* context, const xmlChar* /*text*/, int length) {
    static_cast<Counts*>(context)->characters += static_cast<std::size_t>(length);
}

} // namespace

BareParser::BareParser(const Workload& workload) : keysInDocument(workload.getLayers().front().size()) {
    for (const auto& values : workload.getLayers()) {
        ZelUnified::XmlConfigParser::writeToMemory(documents.emplace_back(), values);
    }
}

void BareParser::parse() const {
    for (const auto& document : documents) {
        Counts counts;
        xmlSAXHandler handler{};
        handler.startElement = countElement;
        handler.characters = countCharacters;
        xmlSAXUserParseMemory(&handler, &counts, document.data(), static_cast<int>(document.size()));
        require(counts.elements == keysInDocument + 2 && counts.characters > 0, "the bare parser");
    }
}

} // namespace bench
