#pragma once

#include "XmlReader.h"

#include <vector>

namespace ZelUnified {

/// Zeroes texts of a parsed tree. A text in the document's dictionary is shared with equal texts and names elsewhere in
/// the document, so only the destructor zeroes it. The destructor must run after the last read of the document and
/// before its release. The content of an entity belongs to its declaration and is never zeroed.
class XmlScrubber {
public:
    explicit XmlScrubber(XmlDocument scrubbed) : document(std::move(scrubbed)) {}
    ~XmlScrubber();
    XmlScrubber(const XmlScrubber&) = delete;
    XmlScrubber& operator=(const XmlScrubber&) = delete;

    /// Zeroes one text or CDATA node; ignores other nodes.
    void scrubText(xmlNode& node);
    /// Zeroes all texts and attributes of the element and its descendants.
    void scrubElement(xmlNode& element);

private:
    XmlDocument document;
    std::vector<xmlChar*> shared;
};

} // namespace ZelUnified
