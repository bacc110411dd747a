#include "EntryBlocks.h"

#include <algorithm>
#include <utility>

namespace ZelUnified {

namespace {

// A small table needs little memory, and a large one wastes less than one block.
constexpr std::size_t firstBlock = 1024;
constexpr std::size_t largestBlock = std::size_t{16} * 1024;

constexpr std::size_t alignment = alignof(std::max_align_t);

} // namespace

void* EntryBlocks::allocate(std::size_t bytes) {
    bytes = (bytes + alignment - 1) / alignment * alignment;
    if (bytes > freeBytes) {
        const std::size_t usual = std::min(firstBlock << std::min<std::size_t>(blocks.size(), 8), largestBlock);
        const std::size_t size = std::max(bytes, usual);
        blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
        free = blocks.back().get();
        freeBytes = size;
    }
    freeBytes -= bytes;
    return std::exchange(free, free + bytes);
}

} // namespace ZelUnified
