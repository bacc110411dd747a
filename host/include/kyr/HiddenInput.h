#pragma once

#include <zel/HostExport.h>

namespace KyrCoreUtils {

/// Lets the terminal on standard input show nothing of what is typed, as for a password, while the object exists. The
/// terminal shows it again as soon as a signal asks the process to end or stops it; when a stopped process continues,
/// it shows nothing again. Has no effect if standard input is not a terminal. Create one object at a time, after
/// EndSignals, on the main thread.
class LUMORA_HOST_API HiddenInput {
public:
    HiddenInput() noexcept;
    ~HiddenInput();
    HiddenInput(const HiddenInput&) = delete;
    HiddenInput& operator=(const HiddenInput&) = delete;
};

} // namespace KyrCoreUtils
