#pragma once

#include <zel/HostExport.h>

#include <cstddef>

namespace KyrCoreUtils {

/// Catches the signals that ask the process to end (interrupt, termination, hang-up), so that a program can bring its
/// changes to the disk first. A second signal ends the process at once. Signals that were ignored stay ignored. Make
/// one object, on the main thread and before the program starts threads; it restores the previous actions at its end.
class LUMORA_HOST_API EndSignals {
public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

    /// The first signal's number; 0 if none has arrived. Any thread.
    static int getReceived() noexcept;
    /// Reads from standard input and waits until there is something to read. Returns the number of bytes; 0 at the end
    /// of the input, on an error, and as soon as a signal has arrived. Main thread.
    static std::size_t readInput(char* buffer, std::size_t room) noexcept;
    /// Ends the process by the signal that has arrived, as if nobody had caught it. Returns if none has arrived.
    static void endProcess() noexcept;
};

} // namespace KyrCoreUtils
