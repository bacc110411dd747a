#pragma once

#include <cstddef>
#include <string>

namespace memory_test {

/// Counts the blocks that libxml2 gives back, or moves away from by growing, while a text stands in them. One at a
/// time; for a program that has not used the library before main(), on one thread.
class XmlFreedBlocks {
public:
    explicit XmlFreedBlocks(const std::string& text);
    ~XmlFreedBlocks();
    XmlFreedBlocks(const XmlFreedBlocks&) = delete;
    XmlFreedBlocks& operator=(const XmlFreedBlocks&) = delete;

    /// Those with the text.
    std::size_t count() const;
    /// All of them.
    std::size_t countAll() const;
};

} // namespace memory_test
