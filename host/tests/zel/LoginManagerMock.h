#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace testing_host {

/// A program that ends with this object or with the thread that started it.
class ChildProcess {
public:
    /// The child inherits the descriptor `inherited` of the caller; -1 for none.
    explicit ChildProcess(std::vector<std::string> arguments, int inherited = -1);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

private:
    int process = -1;
};

/// A private bus. During its lifetime this process uses it as the system bus.
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

/// A mock of the login manager with a connection to it. Use it on one thread.
class LoginManagerMock {
public:
    /// Starts the mock and waits until it is reachable.
    LoginManagerMock();
    ~LoginManagerMock();
    LoginManagerMock(const LoginManagerMock&) = delete;
    LoginManagerMock& operator=(const LoginManagerMock&) = delete;

    /// Sends a signal like the real one: "PrepareForShutdown" or "PrepareForSleep".
    void announce(const char* signal, bool begins);
    /// Sends the same signal from the test's own connection, addressed to each connection of the bus.
    void forge(const char* signal, bool begins);

    /// Returns what each active inhibitor inhibits, and how: "shutdown delay".
    std::vector<std::string> getInhibitors();
    /// Returns false if there were not `count` inhibitors before the deadline.
    bool waitForInhibitors(std::size_t count);

private:
    bool isThere();
    std::vector<std::string> getConnectionNames();

    std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)> bus;
    bool ownerChanged = false;
    std::unique_ptr<ChildProcess> process;
};

} // namespace testing_host
