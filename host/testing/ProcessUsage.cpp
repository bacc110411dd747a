#include "ProcessUsage.h"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

// Weak: only a sanitizer's allocator defines it, and then the library's own statistics are incomplete.
std::size_t bytesOfSanitizer() __asm__("__sanitizer_get_current_allocated_bytes") __attribute__((weak));

namespace testing_host {

namespace {

std::size_t measureHeap() {
    if (ProcessUsage::isInstrumented()) {
        return bytesOfSanitizer();
    }
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

std::size_t measureResident() {
    std::ifstream figures("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    figures >> total >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t countDescriptors() {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    // Excludes the descriptor with which the folder is read.
    return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors))) - 1;
}

/// Returns true if the thread has not ended: it stays listed for a moment after it was joined.
bool isAlive(const std::filesystem::path& task) {
    constexpr unsigned long exiting = 4;
    std::ifstream stream(task / "stat");
    const std::string line{std::istreambuf_iterator<char>(stream), {}};
    // Starts after the name, which may contain any character.
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string skipped;
    unsigned long flags = exiting;
    fields >> skipped >> skipped >> skipped >> skipped >> skipped >> skipped >> flags;
    return (flags & exiting) == 0;
}

std::size_t countThreads() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(
        std::count_if(begin(tasks), end(tasks), [](const auto& entry) { return isAlive(entry.path()); }));
}

} // namespace

ProcessUsage ProcessUsage::measure() {
    ProcessUsage usage;
    usage.fileDescriptors = countDescriptors();
    usage.threads = countThreads();
    usage.heapBytes = measureHeap();
    usage.residentBytes = measureResident();
    return usage;
}

void ProcessUsage::makeHeapExact(char** arguments) {
    constexpr const char* tunables = "GLIBC_TUNABLES";
    if (isInstrumented() || std::getenv(tunables) != nullptr) {
        return;
    }
    setenv(tunables, "glibc.malloc.tcache_count=0", 1);
    execv("/proc/self/exe", arguments);
}

bool ProcessUsage::isInstrumented() {
    return bytesOfSanitizer != nullptr;
}

} // namespace testing_host
