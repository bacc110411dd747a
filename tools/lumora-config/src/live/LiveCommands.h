#pragma once

#include "InspectionClient.h"
#include "commands/CommandGrammar.h"
#include "commands/CommandInput.h"
#include "disk/Doctor.h"
#include "disk/OriginFinder.h"
#include "output/ChainPage.h"
#include "output/Printer.h"

#include <string>

namespace lumora_config {

/// Runs commands on a running client instead of on the profile. Main thread.
class LiveCommands {
public:
    /// All but the flag must outlive the object.
    LiveCommands(InspectionClient& runningClient, CommandInput& commandInput, Printer& target, bool secretsShown)
        : client(runningClient), input(commandInput), printer(target), showSecrets(secretsShown) {}

    /// Returns true if a running client can carry out the command of this name.
    static bool canRun(const std::string& name);
    /// Prints one line that says that the client answers.
    void announce() const;
    /// Runs the command and prints its answer. Throws Failure as the command on the profile does.
    void run(const Command& command);

private:
    using Body = void (LiveCommands::*)(const Command&);

    static Body find(const std::string& name);

    void get(const Command& command);
    void explain(const Command& command);
    void list(const Command& command);
    void keys(const Command& command);
    void describe(const Command& command);
    void stores(const Command& command);
    void report(const Command& command);
    void log(const Command& command);
    void doctor(const Command& command);
    void set(const Command& command);
    void setManaged(const Command& command);
    void change(const Command& command);
    void dump(const Command& command);
    void load(const Command& command);
    void diff(const Command& command);
    void bundle(const Command& command);

    /// Returns the page for a browser.
    std::string makePage();
    /// Returns the stores, the keys with the origins of their values, and the health of the profile.
    ChainFindings readChain(bool withSecrets);
    /// Returns what the client and this process know about the health of the profile.
    HealthReport examine(Doctor::Owners owners);
    void suggestKeys(const std::string& key);
    OriginFinder makeOriginFinder();

    InspectionClient& client;
    CommandInput& input;
    Printer& printer;
    const bool showSecrets;
};

} // namespace lumora_config
