#pragma once

#include "InspectionClient.h"
#include "commands/CommandGrammar.h"
#include "output/Printer.h"

namespace lumora_config {

/// Runs commands on a running client instead of on the profile. Main thread.
class LiveCommands {
public:
    /// The client and the printer must outlive the object.
    LiveCommands(InspectionClient& runningClient, Printer& target, bool secretsShown)
        : client(runningClient), printer(target), showSecrets(secretsShown) {}

    /// Returns true if a running client can carry out the command.
    static bool canRun(const Command& command);
    /// Runs the command and prints its answer. Throws Failure as the command on the profile does.
    void run(const Command& command);

private:
    using Body = void (LiveCommands::*)(const Command&);

    static Body find(const Command& command);

    void get(const Command& command);
    void explain(const Command& command);
    void list(const Command& command);
    void stores(const Command& command);
    void showText(const Command& command);
    void change(const Command& command);
    void dump(const Command& command);
    void load(const Command& command);
    void diff(const Command& command);
    void bundle(const Command& command);

    InspectionClient& client;
    Printer& printer;
    const bool showSecrets;
};

} // namespace lumora_config
