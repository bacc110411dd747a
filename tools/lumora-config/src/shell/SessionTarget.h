#pragma once

#include "ShellTarget.h"
#include "commands/Session.h"

namespace lumora_config {

/// Runs the commands of the shell in a session. Main thread.
class SessionTarget final : public ShellTarget {
public:
    /// The session must outlive the object.
    explicit SessionTarget(Session& commandSession) : session(commandSession) {}

    bool canRun(const std::string& /*name*/) const override { return true; }
    void run(const Command& command) override;
    void confirmWrites() override { session.confirmWrites(); }
    CompletionNames getNames() override;
    LineFilter makeLineFilter() override;
    bool savesHistory() const override { return true; }
    CommandInput& getInput() override { return session.getInput(); }
    Printer& getPrinter() override { return session.getPrinter(); }

private:
    Session& session;
};

} // namespace lumora_config
