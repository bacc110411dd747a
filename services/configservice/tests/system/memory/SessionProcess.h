#pragma once

#include "ProcessImage.h"

#include <TemporaryProfile.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace memory_test {

/// memory_session in a process of its own, standing still at its end until this object goes.
class SessionProcess {
public:
    /// Its standard error goes to the file "stderr" in the profile's root. `runner` is a program, with its arguments,
    /// that runs the session; empty for none.
    SessionProcess(const testing_host::TemporaryProfile& profile, const std::string& scenario,
                   std::vector<std::string> runner = {});
    ~SessionProcess();
    SessionProcess(const SessionProcess&) = delete;
    SessionProcess& operator=(const SessionProcess&) = delete;

    /// Gives it a line to read.
    void tell(const std::string& line) const;
    /// Waits until it stands still; false when it ended instead.
    bool waitUntilDone() const;
    /// All of its memory; empty when it can't be read.
    std::string readImage() const { return readProcessImage(child, folder); }

private:
    [[noreturn]] static void become(std::vector<std::string> command);

    std::string folder;
    pid_t child = -1;
    int input = -1;
    int output = -1;
};

} // namespace memory_test
