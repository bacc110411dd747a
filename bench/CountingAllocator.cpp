#include "CountingAllocator.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::atomic<std::size_t> liveBytes = 0;

/// The size of each block is stored in a header before it.
constexpr std::size_t headerSize = alignof(std::max_align_t);

} // namespace

std::size_t bench::getLiveBytes() {
    return liveBytes;
}

void* operator new(std::size_t size) {
    auto* block = static_cast<std::byte*>(std::malloc(size + headerSize));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(block, &size, sizeof size);
    liveBytes += size;
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
