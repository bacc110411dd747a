#pragma once

#include <libxml/tree.h>

#include <memory>

namespace ZelUnified {

/// Memory that libxml2 writes into; zeroed before it is freed.
using XmlBuffer = std::shared_ptr<xmlBuffer>;

/// Empty when the library has no memory.
XmlBuffer makeXmlBuffer();

} // namespace ZelUnified
