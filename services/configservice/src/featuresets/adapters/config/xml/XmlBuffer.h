#pragma once

#include <libxml/tree.h>

#include <memory>

namespace ZelUnified {

/// Memory that libxml2 writes into. It is zeroed before it is freed.
using XmlBuffer = std::shared_ptr<xmlBuffer>;

/// Returns a buffer with enough memory for everything that the library writes for `node`: growing it would leave a copy
/// of the output behind. Returns null if the library cannot allocate it.
XmlBuffer makeXmlBuffer(const xmlNode& node);

} // namespace ZelUnified
