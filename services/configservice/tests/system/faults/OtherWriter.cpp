#include "OtherWriter.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace ZelUnified {

struct OtherWriter::Process {
    pid_t id = -1;
};

OtherWriter::OtherWriter(const testing_host::TemporaryProfile& /*profile*/)
    : process(std::make_unique<Process>(Process{fork()})) {
    if (process->id == 0) {
        writeSettings();
        _exit(EXIT_SUCCESS);
    }
}

OtherWriter::~OtherWriter() = default;

bool OtherWriter::finish() {
    int status = 0;
    return process->id != -1 && waitpid(process->id, &status, 0) == process->id && WIFEXITED(status) &&
           WEXITSTATUS(status) == EXIT_SUCCESS;
}

} // namespace ZelUnified
