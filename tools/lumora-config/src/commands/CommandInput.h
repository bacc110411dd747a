#pragma once

#include <functional>
#include <string>

namespace lumora_config {

/// Reads what a command takes from standard input, so that a secret does not have to be an argument. Main thread.
class CommandInput {
public:
    /// Reads the next line, without its line feed. Returns false at the end of the input.
    using LineReader = std::function<bool(std::string& line)>;

    /// In the shell, standard input contains the commands, so a value is the next line of it. An empty function means
    /// that the program is not in the shell.
    void setLineReader(LineReader reader) { readLine = std::move(reader); }

    /// Returns one value, without one line break at its end: the next line of a terminal, which does not show it, or of
    /// the shell's input, otherwise the whole input. Throws Failure: NotFound if there is no next line, Environment if
    /// the input is too large or a signal has ended it early.
    std::string readValue() const;
    /// Returns the whole input. Throws Failure: Usage in the shell, Environment as readValue().
    std::string readAll() const;

private:
    LineReader readLine;
};

} // namespace lumora_config
