#pragma once

#include <kyr/SharedLibrary.h>

#include <systemd/sd-bus.h>

namespace ZelSystemMonitor {

/// The functions of libsystemd, under their names. The library is loaded on first use and not with the host: it brings
/// six other libraries along, and a process that receives no power events starts faster without them.
struct SystemdLibrary {
    const KyrCoreUtils::SharedLibrary library{"libsystemd.so.0"};

    LUMORA_LIBRARY_CALL(sd_bus_add_match_async);
    LUMORA_LIBRARY_CALL(sd_bus_call_method_async);
    LUMORA_LIBRARY_CALL(sd_bus_close_unref);
    LUMORA_LIBRARY_CALL(sd_bus_get_events);
    LUMORA_LIBRARY_CALL(sd_bus_get_fd);
    LUMORA_LIBRARY_CALL(sd_bus_get_timeout);
    LUMORA_LIBRARY_CALL(sd_bus_match_signal_async);
    LUMORA_LIBRARY_CALL(sd_bus_message_get_error);
    LUMORA_LIBRARY_CALL(sd_bus_message_get_sender);
    LUMORA_LIBRARY_CALL(sd_bus_message_read);
    LUMORA_LIBRARY_CALL(sd_bus_open_system);
    LUMORA_LIBRARY_CALL(sd_bus_process);
};

/// Returns the loaded library. Throws std::runtime_error if it is not installed or lacks a function. Any thread.
inline const SystemdLibrary& systemd() {
    static const SystemdLibrary loaded;
    return loaded;
}

} // namespace ZelSystemMonitor
