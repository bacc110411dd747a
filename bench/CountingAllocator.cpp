#include "CountingAllocator.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::atomic<std::size_t> liveBytes = 0;
std::atomic<std::size_t> liveHeapBytes = 0;

/// The size of each block is stored in a header before it.
constexpr std::size_t headerSize = alignof(std::max_align_t);

/// The size of the block that an allocator like glibc's uses for a request: 8 bytes more, in steps of 16.
std::size_t toHeapBytes(std::size_t size) {
    constexpr std::size_t step = 16;
    return std::max(2 * step, (size + 8 + step - 1) / step * step);
}

} // namespace

std::size_t bench::getLiveBytes() {
    return liveBytes;
}

std::size_t bench::getLiveHeapBytes() {
    return liveHeapBytes;
}

void* operator new(std::size_t size) {
    auto* block = static_cast<std::byte*>(std::malloc(size + headerSize));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(block, &size, sizeof size);
    liveBytes += size;
    liveHeapBytes += toHeapBytes(size);
    return block + headerSize;
}

/// No program here needs more than the default alignment.
void* operator new(std::size_t size, std::align_val_t /*alignment*/) {
    return operator new(size);
}

void operator delete(void* memory) noexcept {
    if (memory == nullptr) {
        return;
    }
    auto* block = static_cast<std::byte*>(memory) - headerSize;
    std::size_t size = 0;
    std::memcpy(&size, block, sizeof size);
    liveBytes -= size;
    liveHeapBytes -= toHeapBytes(size);
    std::free(block);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    operator delete(memory);
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    operator delete(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    operator delete(memory);
}
