#pragma once

#include "XmlReader.h"

#include <vector>

namespace ZelUnified {

/// Zeroes texts of a parsed tree. A text that the document's dictionary owns stands for equal texts and names elsewhere
/// in the document, so it is zeroed only when the scrubber goes, which must be after the last read of the document and
/// before its release. The content of an entity belongs to its declaration and is never touched.
class XmlScrubber {
public:
    explicit XmlScrubber(XmlDocument scrubbed) : document(std::move(scrubbed)) {}
    ~XmlScrubber();
    XmlScrubber(const XmlScrubber&) = delete;
    XmlScrubber& operator=(const XmlScrubber&) = delete;

    /// One text or CDATA node; others are left alone.
    void scrubText(xmlNode& node);
    /// All texts and attributes of an element and below it.
    void scrubElement(xmlNode& element);

private:
    XmlDocument document;
    std::vector<xmlChar*> shared;
};

} // namespace ZelUnified
