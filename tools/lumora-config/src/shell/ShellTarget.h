#pragma once

#include "commands/CommandGrammar.h"
#include "commands/CommandInput.h"
#include "commands/Completion.h"
#include "output/Printer.h"

#include <functional>
#include <string>

namespace lumora_config {

/// Runs the commands of the shell, either in its own session or on a running client. Main thread.
class ShellTarget {
public:
    /// Returns true for a line that the history must not contain.
    using LineFilter = std::function<bool(const std::string& line)>;

    virtual ~ShellTarget() = default;

    /// Returns false if run() refuses every command of this name.
    virtual bool canRun(const std::string& name) const = 0;
    /// Runs one command and prints its answer. Throws Failure.
    virtual void run(const Command& command) = 0;
    /// Throws Failure (Environment) if an earlier change is not on the disk.
    virtual void confirmWrites() = 0;
    /// Returns the names for completion, which are read when they are needed.
    virtual CompletionNames getNames() = 0;
    /// Returns a filter as of now.
    virtual LineFilter makeLineFilter() = 0;
    /// Returns false if the lines are remembered for this run only.
    virtual bool savesHistory() const = 0;
    virtual CommandInput& getInput() = 0;
    virtual Printer& getPrinter() = 0;
};

} // namespace lumora_config
