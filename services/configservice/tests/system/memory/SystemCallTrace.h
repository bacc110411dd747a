#pragma once

#include <map>
#include <string>
#include <vector>

namespace memory_test {

/// All that a process handed to the system, as strace saw it.
class SystemCallTrace {
public:
    /// What runs a program under strace and writes the trace to `file`; empty where that can't be done.
    static std::vector<std::string> makeRunner(const std::string& file);

    /// Reads the trace of a process that has ended.
    explicit SystemCallTrace(const std::string& file);

    /// The texts and bytes of all calls, in one piece for each descriptor or name they went to, by the operation that
    /// the process had announced on its standard output ("" before the first).
    const std::map<std::string, std::map<std::string, std::string>>& getOperations() const { return operations; }
    /// The calls of these names.
    std::size_t countCalls(const std::string& name) const;
    /// Calls by which bytes could have left without being seen, or that strace showed cut short.
    const std::vector<std::string>& getUnseen() const { return unseen; }

private:
    void read(const std::string& line);

    std::map<std::string, std::map<std::string, std::string>> operations;
    std::map<std::string, std::size_t> calls;
    std::vector<std::string> unseen;
    std::string operation;
};

} // namespace memory_test
