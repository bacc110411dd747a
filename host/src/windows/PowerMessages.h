#pragma once

#include "zel/PowerEventSource.h"

#include <windows.h>

#include <optional>

namespace ZelSystemMonitor {

/// Translates the messages of the system to power events.
class LUMORA_HOST_API PowerMessages {
public:
    explicit PowerMessages(PowerEventReceiver eventReceiver);

    /// Returns the answer to a message, or nullopt if it is none of this class. The end of the session is answered
    /// after the receiver's hold was released, or after four seconds, because the system ends slower processes.
    std::optional<LRESULT> handle(UINT message, WPARAM parameter);

private:
    void passPowerDown();

    const PowerEventReceiver receiver;
};

} // namespace ZelSystemMonitor
