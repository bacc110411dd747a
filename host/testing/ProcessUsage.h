#pragma once

#include <cstddef>

namespace testing_host {

/// What this process holds of the machine, for tests that look for what is never given back.
struct ProcessUsage {
    static ProcessUsage measure();
    /// Starts the program anew, once, with an allocator that keeps no freed blocks aside for each thread: only then are
    /// a few bytes told from noise. To be called first in main().
    static void makeHeapExact(char** arguments);
    /// Whether a sanitizer stands behind the memory: what is freed then stays resident for long.
    static bool isInstrumented();

    std::size_t heapBytes = 0; ///< Allocated and not freed, of every library.
    std::size_t residentBytes = 0;
    std::size_t fileDescriptors = 0;
    std::size_t threads = 0;
};

} // namespace testing_host
