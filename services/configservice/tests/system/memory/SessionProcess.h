#pragma once

#include "ProcessImage.h"

#include <TemporaryProfile.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace memory_test {

/// Runs memory_session in a child process, which stops at its end until this object is destroyed.
class SessionProcess {
public:
    /// Standard error is written to the file "stderr" in the profile's root. `runner` is a program with its arguments
    /// that runs the session, or empty.
    SessionProcess(const testing_host::TemporaryProfile& profile, const std::string& scenario,
                   std::vector<std::string> runner = {});
    ~SessionProcess();
    SessionProcess(const SessionProcess&) = delete;
    SessionProcess& operator=(const SessionProcess&) = delete;

    /// Sends a line to the process.
    void tell(const std::string& line) const;
    /// Waits until the process stops. Returns false if it ended instead.
    bool waitUntilDone() const;
    /// Returns all of its memory, or "" if it is unreadable.
    std::string readImage() const { return readProcessImage(child, folder); }

private:
    [[noreturn]] static void become(std::vector<std::string> command);

    std::string folder;
    pid_t child = -1;
    int input = -1;
    int output = -1;
};

} // namespace memory_test
