#pragma once

#include "InspectionClient.h"
#include "commands/CommandGrammar.h"
#include "commands/CommandInput.h"
#include "output/Printer.h"
#include "output/SettingsDump.h"

#include <string>

namespace lumora_config {

/// Runs `dump`, `load` and `diff` on the running client. Main thread.
class LiveSettings {
public:
    /// The client must outlive the object.
    explicit LiveSettings(InspectionClient& runningClient) : client(runningClient) {}

    /// Returns the values that SettingsDump names `source`; an empty text means the user's. Throws Failure (NotFound)
    /// if there is no such store.
    SettingsDump read(const std::string& source, bool showSecrets);

    void dump(const Command& command, bool showSecrets, Printer& printer);
    /// Sends the values in as many requests as needed. The client sets them after the last one, all or none.
    void load(const Command& command, const CommandInput& input, Printer& printer);

private:
    InspectionClient& client;
};

} // namespace lumora_config
