#pragma once

#include <cstddef>

namespace bench {

/// The bytes that are allocated by `new` at this moment. A program that links CountingAllocator.cpp has the global
/// operators replaced by counting ones.
std::size_t getLiveBytes();

} // namespace bench
