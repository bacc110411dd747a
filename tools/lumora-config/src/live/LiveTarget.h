#pragma once

#include "InspectionClient.h"
#include "shell/ShellTarget.h"

namespace lumora_config {

/// Runs the commands of the shell on the client that uses the profile. Connects for each command, because the client
/// closes idle connections. Main thread.
class LiveTarget final : public ShellTarget {
public:
    /// The printer must outlive the object.
    LiveTarget(Printer& target, bool secretsShown) : printer(target), showSecrets(secretsShown) {}

    bool canRun(const std::string& name) const override;
    /// Throws Failure (Environment) if no client uses the profile, or if the client cannot carry out the command.
    void run(const Command& command) override;
    void confirmWrites() override {} // the client answers when a change is on the disk
    CompletionNames getNames() override;
    /// Returns a filter that rejects every line with a value: this process does not know the client's secrets.
    LineFilter makeLineFilter() override;
    bool savesHistory() const override { return false; } // the folder belongs to the client
    CommandInput& getInput() override { return input; }
    Printer& getPrinter() override { return printer; }

private:
    Printer& printer;
    const bool showSecrets;
    CommandInput input;
    long announced = 0; ///< The process of the last announcement.
};

} // namespace lumora_config
