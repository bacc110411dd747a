#pragma once

namespace ZelUnified {

/// To be made before anything else of libxml2 is used: the library prepares itself at its first use, and goes wrong
/// when two threads make that use at once.
class XmlLibrary {
public:
    XmlLibrary();
};

} // namespace ZelUnified
