#pragma once

#include "InspectionClient.h"
#include "output/Output.h"

#include <string>
#include <vector>

namespace lumora_config {

/// Prints the changes of the running client until it ends or a signal arrives. Main thread.
class ChangeWatch {
public:
    enum class Form { Text, Json };

    /// `watched` are keys and patterns; none means every key. The outputs must outlive the object.
    ChangeWatch(Output& answers, Output& messages, Form outputForm, std::vector<std::string> watched,
                bool secretsShown);

    /// Watches one client. Throws Failure (Environment) if none uses the profile.
    void run();
    /// Watches one client after the other until a signal arrives or nobody reads the output.
    void runForEver();

private:
    /// Returns false if the watch must end: a signal arrived, or nobody reads the output.
    bool watch(InspectionClient& client);
    void show(const InspectionClient::Json& event);

    Output& output;
    Output& diagnostics;
    const Form form;
    const std::vector<std::string> keys;
    const bool showSecrets;
};

} // namespace lumora_config
