#pragma once

#include <map>
#include <string>
#include <vector>

namespace memory_test {

/// All data that a process passed to system calls, recorded by strace.
class SystemCallTrace {
public:
    /// Returns the command that runs a program under strace and writes the trace to `file`, or nothing if strace does
    /// not work here.
    static std::vector<std::string> makeRunner(const std::string& file);

    /// Reads the trace of a process that has ended.
    explicit SystemCallTrace(const std::string& file);

    /// Returns the texts and bytes of all calls, joined per descriptor or name, by the operation that the process had
    /// announced on its standard output ("" before the first).
    const std::map<std::string, std::map<std::string, std::string>>& getOperations() const { return operations; }
    /// Returns the number of calls with this name.
    std::size_t countCalls(const std::string& name) const;
    /// Returns the calls that may have sent bytes which strace did not show or truncated.
    const std::vector<std::string>& getUnseen() const { return unseen; }

private:
    void read(const std::string& line);

    std::map<std::string, std::map<std::string, std::string>> operations;
    std::map<std::string, std::size_t> calls;
    std::vector<std::string> unseen;
    std::string operation;
};

} // namespace memory_test
