#pragma once

namespace ZelUnified {

/// Initialises libxml2. Construct one before any other use of libxml2: the library otherwise initialises itself at its
/// first use, which is a race if two threads do so at once.
class XmlLibrary {
public:
    XmlLibrary();
};

} // namespace ZelUnified
