#pragma once

#include <cstddef>
#include <string>

namespace memory_test {

/// Counts the blocks that still contain a text when libxml2 frees or reallocates them. Only one object at a time; for a
/// program that has not used the library before main(), on one thread.
class XmlFreedBlocks {
public:
    explicit XmlFreedBlocks(const std::string& text);
    ~XmlFreedBlocks();
    XmlFreedBlocks(const XmlFreedBlocks&) = delete;
    XmlFreedBlocks& operator=(const XmlFreedBlocks&) = delete;

    /// Returns the number of freed blocks that contained the text.
    std::size_t count() const;
    /// Returns the number of all freed blocks.
    std::size_t countAll() const;
};

} // namespace memory_test
