#pragma once

#include "ProcessImage.h"

#include <TemporaryProfile.h>
#include <sys/types.h>

#include <string>

namespace memory_test {

/// memory_session in a process of its own, standing still at its end until this object goes.
class SessionProcess {
public:
    /// Its standard error goes to the file "stderr" in the profile's root.
    SessionProcess(const testing_host::TemporaryProfile& profile, const std::string& scenario);
    ~SessionProcess();
    SessionProcess(const SessionProcess&) = delete;
    SessionProcess& operator=(const SessionProcess&) = delete;

    /// Waits until it stands still; false when it ended instead.
    bool waitUntilDone() const;
    /// All of its memory; empty when it can't be read.
    std::string readImage() const { return readProcessImage(child, folder); }

private:
    std::string folder;
    pid_t child = -1;
    int input = -1;
    int output = -1;
};

} // namespace memory_test
