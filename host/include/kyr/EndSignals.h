#pragma once

#include <zel/HostExport.h>

#include <chrono>
#include <cstddef>

namespace KyrCoreUtils {

/// Catches the signals that ask the process to end (interrupt, termination, hang-up), so that a program can first write
/// its changes to the disk. A second signal ends the process immediately. Signals that were ignored stay ignored.
/// Create one object, on the main thread, before the program starts threads; its destructor restores the previous
/// actions.
class LUMORA_HOST_API EndSignals {
public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

    /// Returns the number of the first signal; 0 if none has arrived. Any thread.
    static int getReceived() noexcept;
    /// Waits for standard input and reads from it. Returns the number of bytes; 0 at the end of the input, on an error,
    /// and as soon as a signal has arrived. Main thread.
    static std::size_t readInput(char* buffer, std::size_t room) noexcept;
    /// Waits until a signal has arrived, at most for the given time. Returns true if one has arrived. Main thread.
    static bool waitFor(std::chrono::milliseconds time) noexcept;
    /// Waits until a signal has arrived. Main thread.
    static void wait() noexcept;
    /// Forgets the signal, because it was the regular end of the command: endProcess() then returns.
    static void acknowledge() noexcept;
    /// Ends the process by the signal that has arrived, with the default action. Returns if none has arrived.
    static void endProcess() noexcept;
};

} // namespace KyrCoreUtils
