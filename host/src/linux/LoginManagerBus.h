#pragma once

#include "zel/PowerEventSource.h"

#include <systemd/sd-bus.h>

#include <memory>
#include <string>

namespace ZelSystemMonitor {

/// One connection to the system bus on which the login manager's announcements are heard. It holds an inhibitor, so
/// that the machine waits with a shutdown until the receiver has let go of the hold that comes with the event. Sleep is
/// announced but not delayed: nobody has anything to save for it.
///
/// Nothing here waits but wait(). To be used by one thread.
class LoginManagerBus {
public:
    explicit LoginManagerBus(PowerEventReceiver eventReceiver);
    LoginManagerBus(const LoginManagerBus&) = delete;
    LoginManagerBus& operator=(const LoginManagerBus&) = delete;

    /// Connects and asks for everything; the answers come with process(). 0 or a negative errno.
    int open();
    /// Handles what has come. Positive when there may be more, 0 when not, a negative errno when the connection is
    /// gone.
    int process();
    /// Returns when something has come, or when `wakeDescriptor` can be read. 0 or a negative errno.
    int wait(int wakeDescriptor);

private:
    static int onPrepareForShutdown(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onPrepareForSleep(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onNameOwnerChanged(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onInhibited(sd_bus_message* reply, void* self, sd_bus_error* error);

    int listen(const char* signal, sd_bus_message_handler_t handler);
    int requestInhibitor();
    void acceptInhibitor(sd_bus_message* reply);
    bool isFromLoginManager(sd_bus_message* message) const;
    void prepareForShutdown(bool begins);

    const PowerEventReceiver receiver;
    std::unique_ptr<sd_bus, decltype(&sd_bus_close_unref)> bus{nullptr, &sd_bus_close_unref};
    std::string loginManager; ///< Its unique name on the bus: anyone may send a signal that looks like its own.
    bool inhibitorRequested = false;
    PowerEventHold inhibitor;
};

} // namespace ZelSystemMonitor
