// For platforms whose processes cannot fork: starts a program of its own.
#include "OtherWriter.h"

#include <RunningProcess.h>

#include <cstdlib>

namespace ZelUnified {

struct OtherWriter::Process {
    testing_host::RunningProcess running;
};

OtherWriter::OtherWriter(const testing_host::TemporaryProfile& profile)
    : process(new Process{{LUMORA_SETTINGS_WRITER,
                           {profile.config().string(), profile.data().string(), profile.state().string(),
                            profile.resources().string()}}}) {}

OtherWriter::~OtherWriter() = default;

bool OtherWriter::finish() {
    return process->running.waitForEnd() == EXIT_SUCCESS;
}

} // namespace ZelUnified
