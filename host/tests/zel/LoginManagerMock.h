#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace testing_host {

/// A program that ends with this object, or with the test's thread that started it.
class ChildProcess {
public:
    /// The child keeps `inherited`, a descriptor of the caller's; -1 for none.
    explicit ChildProcess(std::vector<std::string> arguments, int inherited = -1);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

private:
    int process = -1;
};

/// A bus of the test's own. While it lives, it is what this process takes for the system bus.
class PrivateSystemBus {
public:
    PrivateSystemBus();
    ~PrivateSystemBus();
    PrivateSystemBus(const PrivateSystemBus&) = delete;
    PrivateSystemBus& operator=(const PrivateSystemBus&) = delete;

    void end() { daemon.reset(); }

private:
    std::filesystem::path folder;
    std::unique_ptr<ChildProcess> daemon;
};

/// A stand-in for the login manager, and the test's connection to it. To be used by one thread.
class LoginManagerMock {
public:
    /// Returns when it can be reached.
    LoginManagerMock();
    ~LoginManagerMock();
    LoginManagerMock(const LoginManagerMock&) = delete;
    LoginManagerMock& operator=(const LoginManagerMock&) = delete;

    /// Announces like the real one: "PrepareForShutdown" or "PrepareForSleep".
    void announce(const char* signal, bool begins);
    /// The same signal, but sent by the test and to everybody's face.
    void forge(const char* signal, bool begins);

    /// What each inhibitor that is held inhibits, and how: "shutdown delay".
    std::vector<std::string> getInhibitors();
    /// False when there were not so many before the deadline.
    bool waitForInhibitors(std::size_t count);

private:
    bool isThere();
    std::vector<std::string> getConnectionNames();

    std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)> bus;
    bool ownerChanged = false;
    std::unique_ptr<ChildProcess> process;
};

} // namespace testing_host
