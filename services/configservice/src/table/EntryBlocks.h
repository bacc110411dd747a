#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace ZelUnified {

/// Memory for entries that come together: taken in blocks, given back as a whole. What lies in it is its user's to
/// wipe.
class EntryBlocks {
public:
    /// Aligned as by operator new. Good until the blocks go.
    void* allocate(std::size_t bytes);

private:
    std::vector<std::unique_ptr<std::byte[]>> blocks;
    std::byte* free = nullptr; ///< In the last block.
    std::size_t freeBytes = 0;
};

} // namespace ZelUnified
