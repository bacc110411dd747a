#pragma once

#include "Program.h"

#include <string>

namespace program_test {

/// A shell or another command on a pseudo terminal, on which a test types. The destructor ends it.
class ShellTerminal {
public:
    /// Starts the shell with the value of TERM and waits for its prompt.
    explicit ShellTerminal(const Profile& profile, const std::string& terminalName = "xterm");
    /// Starts another program with its arguments.
    explicit ShellTerminal(const Arguments& command, const std::string& terminalName = "xterm");
    ~ShellTerminal();
    ShellTerminal(const ShellTerminal&) = delete;
    ShellTerminal& operator=(const ShellTerminal&) = delete;

    void type(const std::string& keys) const;
    /// Waits until the terminal has shown the text after the text of the last call. Returns what was shown up to its
    /// end. Throws std::runtime_error if the text has not appeared after thirty seconds or the program has ended.
    std::string await(const std::string& text);
    void signal(int number) const;
    /// Waits for the end of the process and returns the exit code as in Outcome. Throws std::runtime_error if it has
    /// not ended after thirty seconds.
    int waitForEnd();
    /// Returns true if the terminal edits lines and echoes them itself.
    bool isInUsualMode() const;

private:
    /// Reads what the terminal shows next. Returns false at the end.
    bool readMore();

    int process = -1;
    int terminal = -1;
    std::string shown;
};

} // namespace program_test
