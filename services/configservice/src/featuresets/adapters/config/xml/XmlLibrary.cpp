#include "XmlLibrary.h"

#include <libxml/parser.h>

namespace ZelUnified {

XmlLibrary::XmlLibrary() {
    [[maybe_unused]] static const bool prepared = [] {
        xmlInitParser();
        return true;
    }();
}

} // namespace ZelUnified
