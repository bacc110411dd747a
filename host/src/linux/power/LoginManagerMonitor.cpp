#include "LoginManagerMonitor.h"

#include "LoginManagerBus.h"
#include "LoginManagerLogger.h"
#include "linux/FileDescriptor.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace ZelSystemMonitor {

/// The loop of the thread. It runs until stop() is called or the connection is lost.
class LoginManagerMonitor::Loop {
public:
    explicit Loop(PowerEventReceiver eventReceiver)
        : receiver(std::move(eventReceiver)), wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

    void run() {
        try {
            if (const int result = wake.get() < 0 ? -EMFILE : listen(); result < 0) {
                logEnd(std::error_code(-result, std::generic_category()).message());
            }
        } catch (const std::runtime_error& error) {
            logEnd(error.what());
        }
    }

    void stop() {
        stopped = true;
        eventfd_write(wake.get(), 1);
    }

private:
    static void logEnd(const std::string& reason) {
        ZelLog(loginManagerLogger, ZelLogLevel::Info, ZEL_HERE, "No power events are delivered: " + reason);
    }

    /// Returns 0 if stopped, otherwise a negative errno value. Throws std::runtime_error if libsystemd is not
    /// installed.
    int listen() {
        LoginManagerBus bus(receiver);
        int result = bus.open();
        while (result >= 0 && !stopped) {
            result = bus.process();
            if (result == 0 && !stopped) {
                result = bus.wait(wake.get());
            }
        }
        return std::min(result, 0);
    }

    const PowerEventReceiver receiver;
    const zel::platform::FileDescriptor wake;
    std::atomic<bool> stopped = false;
};

LoginManagerMonitor::LoginManagerMonitor(PowerEventReceiver receiver)
    : loop(std::make_shared<Loop>(std::move(receiver))), thread([running = loop] { running->run(); }) {}

LoginManagerMonitor::~LoginManagerMonitor() {
    loop->stop();
    if (thread.get_id() == std::this_thread::get_id()) {
        thread.detach(); // the receiver destroyed this object during an event
        return;
    }
    thread.join();
}

std::unique_ptr<PowerEventSource> openPowerEventSource(PowerEventReceiver receiver) {
    return std::make_unique<LoginManagerMonitor>(std::move(receiver));
}

} // namespace ZelSystemMonitor
