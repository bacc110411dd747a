#pragma once

#include <TemporaryProfile.h>

#include <memory>

namespace ZelUnified {

/// Another process that changes the user's settings of a profile a hundred times.
class OtherWriter {
public:
    explicit OtherWriter(const testing_host::TemporaryProfile& profile);
    ~OtherWriter();
    OtherWriter(const OtherWriter&) = delete;
    OtherWriter& operator=(const OtherWriter&) = delete;

    /// Waits for the end. Returns true if the process has made all changes.
    bool finish();

private:
    struct Process;

    std::unique_ptr<Process> process;
};

/// What the process does, on the files of the host's current directories.
void writeSettings();

} // namespace ZelUnified
