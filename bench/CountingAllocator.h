#pragma once

#include <cstddef>

namespace bench {

/// Returns the number of bytes currently allocated by `new`. Linking CountingAllocator.cpp replaces the global
/// operators by counting ones.
std::size_t getLiveBytes();

/// Returns the memory of these blocks on the heap, which includes what an allocator adds to each request.
std::size_t getLiveHeapBytes();

} // namespace bench
