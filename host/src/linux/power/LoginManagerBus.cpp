#include "LoginManagerBus.h"

#include "LoginManagerLogger.h"
#include "SystemdLibrary.h"
#include "linux/FileDescriptor.h"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <limits>
#include <optional>
#include <utility>

namespace ZelSystemMonitor {

namespace {

constexpr const char* service = "org.freedesktop.login1";
constexpr const char* object = "/org/freedesktop/login1";
constexpr const char* interface = "org.freedesktop.login1.Manager";
constexpr const char* busService = "org.freedesktop.DBus";
constexpr const char* ownerChanges = "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                                     "member='NameOwnerChanged',arg0='org.freedesktop.login1'";

std::string senderOf(sd_bus_message* message) {
    const char* sender = systemd().sd_bus_message_get_sender(message);
    return sender != nullptr ? sender : "";
}

std::optional<bool> readFlag(sd_bus_message* message) {
    int flag = 0;
    if (systemd().sd_bus_message_read(message, "b", &flag) < 0) {
        return std::nullopt;
    }
    return flag != 0;
}

/// Returns the timeout for poll(): the milliseconds until the connection must be processed again, -1 for none.
int timeoutOf(sd_bus* bus) {
    std::uint64_t due = 0; // microseconds of the monotonic clock
    if (systemd().sd_bus_get_timeout(bus, &due) < 0 || due == std::numeric_limits<std::uint64_t>::max()) {
        return -1;
    }
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const auto current =
        static_cast<std::uint64_t>(now.tv_sec) * 1'000'000 + static_cast<std::uint64_t>(now.tv_nsec) / 1'000;
    constexpr std::uint64_t longest = std::numeric_limits<int>::max();
    return due <= current ? 0 : static_cast<int>(std::min((due - current + 999) / 1'000, longest));
}

} // namespace

void LoginManagerBus::Closer::operator()(sd_bus* opened) const {
    systemd().sd_bus_close_unref(opened);
}

LoginManagerBus::LoginManagerBus(PowerEventReceiver eventReceiver) : receiver(std::move(eventReceiver)) {}

int LoginManagerBus::open() {
    sd_bus* opened = nullptr;
    if (const int result = systemd().sd_bus_open_system(&opened); result < 0) {
        return result;
    }
    bus.reset(opened);
    int result = systemd().sd_bus_add_match_async(bus.get(), nullptr, ownerChanges, &onNameOwnerChanged, nullptr, this);
    if (result >= 0) {
        result = listen("PrepareForShutdown", &onPrepareForShutdown);
    }
    if (result >= 0) {
        result = listen("PrepareForSleep", &onPrepareForSleep);
    }
    if (result >= 0) {
        result = requestInhibitor();
    }
    return std::min(result, 0);
}

int LoginManagerBus::listen(const char* signal, sd_bus_message_handler_t handler) {
    return systemd().sd_bus_match_signal_async(bus.get(), nullptr, service, object, interface, signal, handler, nullptr,
                                               this);
}

int LoginManagerBus::process() {
    return systemd().sd_bus_process(bus.get(), nullptr);
}

int LoginManagerBus::wait(int wakeDescriptor) {
    const int descriptor = systemd().sd_bus_get_fd(bus.get());
    const int events = systemd().sd_bus_get_events(bus.get());
    if (descriptor < 0 || events < 0) {
        return std::min(descriptor, events);
    }
    std::array<pollfd, 2> watched{{{descriptor, static_cast<short>(events), 0}, {wakeDescriptor, POLLIN, 0}}};
    if (poll(watched.data(), watched.size(), timeoutOf(bus.get())) < 0 && errno != EINTR) {
        return -errno;
    }
    return 0;
}

int LoginManagerBus::requestInhibitor() {
    if (inhibitorRequested) {
        return 0;
    }
    const int result =
        systemd().sd_bus_call_method_async(bus.get(), nullptr, service, object, interface, "Inhibit", &onInhibited,
                                           this, "ssss", "shutdown", "Lumora", "Settings are being saved", "delay");
    inhibitorRequested = result >= 0;
    return result;
}

int LoginManagerBus::onInhibited(sd_bus_message* reply, void* self, sd_bus_error*) {
    auto& connection = *static_cast<LoginManagerBus*>(self);
    connection.inhibitorRequested = false;
    if (const auto sender = senderOf(reply); sender != busService) { // the bus replies for a missing service
        connection.loginManager = sender;
    }
    connection.acceptInhibitor(reply);
    return 0;
}

void LoginManagerBus::acceptInhibitor(sd_bus_message* reply) {
    if (const sd_bus_error* refusal = systemd().sd_bus_message_get_error(reply); refusal != nullptr) {
        ZelLog(loginManagerLogger, ZelLogLevel::Info, ZEL_HERE,
               std::string("No inhibitor, a shutdown won't wait: ") +
                   (refusal->message != nullptr ? refusal->message : refusal->name));
        return;
    }
    int given = -1; // owned by the message
    if (systemd().sd_bus_message_read(reply, "h", &given) < 0) {
        return;
    }
    inhibitor = std::make_shared<const zel::platform::FileDescriptor>(fcntl(given, F_DUPFD_CLOEXEC, 3));
}

bool LoginManagerBus::isFromLoginManager(sd_bus_message* message) const {
    return !loginManager.empty() && senderOf(message) == loginManager;
}

int LoginManagerBus::onPrepareForShutdown(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& connection = *static_cast<LoginManagerBus*>(self);
    const auto begins = readFlag(message);
    if (begins && connection.isFromLoginManager(message)) {
        connection.prepareForShutdown(*begins);
    }
    return 0;
}

void LoginManagerBus::prepareForShutdown(bool begins) {
    if (begins) {
        receiver(PowerEventTypeEnum::PowerDown, std::exchange(inhibitor, nullptr));
        return;
    }
    requestInhibitor();
    receiver(PowerEventTypeEnum::ShutdownCancelled, nullptr);
}

int LoginManagerBus::onPrepareForSleep(sd_bus_message* message, void* self, sd_bus_error*) {
    const auto& connection = *static_cast<LoginManagerBus*>(self);
    const auto begins = readFlag(message);
    if (begins && connection.isFromLoginManager(message)) {
        connection.receiver(*begins ? PowerEventTypeEnum::Suspend : PowerEventTypeEnum::Resume, nullptr);
    }
    return 0;
}

int LoginManagerBus::onNameOwnerChanged(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& connection = *static_cast<LoginManagerBus*>(self);
    const char* name = nullptr;
    const char* oldOwner = nullptr;
    const char* newOwner = nullptr;
    if (senderOf(message) != busService ||
        systemd().sd_bus_message_read(message, "sss", &name, &oldOwner, &newOwner) < 0) {
        return 0;
    }
    connection.loginManager = newOwner;
    if (!connection.loginManager.empty()) {
        connection.requestInhibitor();
    }
    return 0;
}

} // namespace ZelSystemMonitor
