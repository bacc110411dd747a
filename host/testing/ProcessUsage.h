#pragma once

#include <cstddef>

namespace testing_host {

/// The resources of this process, for tests that look for leaks.
struct ProcessUsage {
    static ProcessUsage measure();
    /// Restarts the program once, with an allocator without a cache per thread: only then can a leak of a few bytes be
    /// measured. Call it first in main().
    static void makeHeapExact(char** arguments);
    /// Returns true if a sanitizer replaces the allocator: freed memory then stays resident for long.
    static bool isInstrumented();

    std::size_t heapBytes = 0; ///< Allocated and not freed, in all libraries.
    std::size_t residentBytes = 0;
    std::size_t fileDescriptors = 0;
    std::size_t threads = 0;
};

} // namespace testing_host
