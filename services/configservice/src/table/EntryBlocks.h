#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace ZelUnified {

/// An arena for entries that are created together: allocates blocks and frees all of them at once. The caller must zero
/// the contents.
class EntryBlocks {
public:
    /// Returns memory aligned like that of operator new. It is valid until this object is destroyed.
    void* allocate(std::size_t bytes);

private:
    std::vector<std::unique_ptr<std::byte[]>> blocks;
    std::byte* free = nullptr; ///< Points into the last block.
    std::size_t freeBytes = 0;
};

} // namespace ZelUnified
