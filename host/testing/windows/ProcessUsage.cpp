#include "ProcessUsage.h"

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>
// clang-format on

#include <io.h>
#include <malloc.h>

namespace testing_host {

namespace {

/// Returns the size of the allocated blocks in the heap of the C library, which all libraries of the process share.
std::size_t measureHeap() {
    const auto heap = reinterpret_cast<HANDLE>(::_get_heap_handle());
    std::size_t bytes = 0;
    PROCESS_HEAP_ENTRY entry{};
    ::HeapLock(heap);
    while (::HeapWalk(heap, &entry)) {
        bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
    }
    ::HeapUnlock(heap);
    return bytes;
}

std::size_t measureResident() {
    PROCESS_MEMORY_COUNTERS counters{};
    return ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters) ? counters.WorkingSetSize : 0;
}

/// Returns the number of open descriptors of the C library. Wine does not count the handles of a process.
std::size_t countDescriptors() {
    constexpr int mostDescriptors = 2048;
    std::size_t count = 0;
    for (int descriptor = 0; descriptor < mostDescriptors; ++descriptor) {
        count += ::_get_osfhandle(descriptor) >= 0 ? 1U : 0U;
    }
    return count;
}

std::size_t countThreads() {
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    std::size_t count = 0;
    for (BOOL found = ::Thread32First(snapshot, &thread); found; found = ::Thread32Next(snapshot, &thread)) {
        count += thread.th32OwnerProcessID == ::GetCurrentProcessId() ? 1U : 0U;
    }
    ::CloseHandle(snapshot);
    return count;
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

void ProcessUsage::makeHeapExact(char** /*arguments*/) {}

bool ProcessUsage::isInstrumented() {
    return false;
}

} // namespace testing_host
