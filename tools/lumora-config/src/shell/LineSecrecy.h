#pragma once

#include "commands/Session.h"

#include <string>
#include <vector>

namespace lumora_config {

/// Decides which lines of the shell the history must not contain, as of the time of construction. Main thread.
class LineSecrecy {
public:
    /// The session must outlive the object.
    explicit LineSecrecy(Session& commandSession);

    /// Returns true if the line contains the value of a sensitive key, may set one, or cannot be split into words.
    bool isSecret(const std::string& line) const;

private:
    bool maySetSensitiveKey(const std::vector<std::string>& words) const;

    const Session& session;
    std::vector<std::string> secrets; ///< The values of the sensitive keys in all stores.
};

} // namespace lumora_config
