#pragma once

#include <cstddef>

namespace bench {

/// Returns the number of bytes currently allocated by `new`. Linking CountingAllocator.cpp replaces the global
/// operators by counting ones.
std::size_t getLiveBytes();

} // namespace bench
