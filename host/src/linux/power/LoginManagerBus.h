#pragma once

#include "zel/PowerEventSource.h"

#include <systemd/sd-bus.h>

#include <memory>
#include <string>

namespace ZelSystemMonitor {

/// A connection to the system bus that receives the login manager's signals. It holds an inhibitor, which delays a
/// shutdown until the receiver has released the hold that is passed with the event. Sleep is signalled but not delayed,
/// because nothing needs to be saved before it.
///
/// Only wait() blocks. Not thread-safe.
class LoginManagerBus {
public:
    explicit LoginManagerBus(PowerEventReceiver eventReceiver);
    LoginManagerBus(const LoginManagerBus&) = delete;
    LoginManagerBus& operator=(const LoginManagerBus&) = delete;

    /// Connects and sends all requests; process() handles the replies. Returns 0 or a negative errno value.
    /// Throws std::runtime_error if libsystemd is not installed.
    int open();
    /// Handles the received messages. Returns a positive value if there may be more, 0 if not, a negative errno value
    /// if the connection is lost.
    int process();
    /// Waits until a message has arrived or `wakeDescriptor` is readable. Returns 0 or a negative errno value.
    int wait(int wakeDescriptor);

private:
    struct Closer {
        void operator()(sd_bus* opened) const;
    };

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
    std::unique_ptr<sd_bus, Closer> bus;
    std::string loginManager; ///< Its unique bus name: any process may send the same signals.
    bool inhibitorRequested = false;
    PowerEventHold inhibitor;
};

} // namespace ZelSystemMonitor
