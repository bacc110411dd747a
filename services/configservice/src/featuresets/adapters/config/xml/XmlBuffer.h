#pragma once

#include <libxml/tree.h>

#include <memory>

namespace ZelUnified {

/// Memory that libxml2 writes into; zeroed before it is freed.
using XmlBuffer = std::shared_ptr<xmlBuffer>;

/// With room for all that the library writes of `node`: growing, it would leave behind what it had written. Empty when
/// the library has no memory.
XmlBuffer makeXmlBuffer(const xmlNode& node);

} // namespace ZelUnified
